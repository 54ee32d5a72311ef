// The COM object of the class CInstruments.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "network/instruments.h"
#include "server/automation_object.h"
#include "server/com_headers.h"

namespace kesp {

// Wraps a collection, which it may share with a transport. Its items are COM objects: those that clients
// added, handed back as the very same objects.
class InstrumentsClass final : public AutomationObject<::_CInstruments> {
 public:
  explicit InstrumentsClass(std::shared_ptr<CInstruments> object = std::make_shared<CInstruments>());

  HRESULT STDMETHODCALLTYPE Item(VARIANT vIndexKey, ::_CInstrument** retval) override;
  HRESULT STDMETHODCALLTYPE AddReference(::_CInstrument* objObject, BSTR sKey) override;
  HRESULT STDMETHODCALLTYPE Remove(VARIANT vIndexKey) override;
  HRESULT STDMETHODCALLTYPE Clear() override;
  HRESULT STDMETHODCALLTYPE get_Count(LONG* retval) override;
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** retval) override;

 private:
  std::shared_ptr<CInstruments> object_;
};

}  // namespace kesp
