// An instrument whose record lives in a COM object, the library's own or a client's.
#pragma once

#include <wrl/client.h>

#include <memory>

#include "KespCommObj.h"
#include "network/instrument.h"
#include "server/com_headers.h"

namespace kesp {

// Holds a reference to the COM object and reads and writes its properties. A property that cannot be reached
// (the object's process is gone) reads as empty; one that cannot be set throws InvalidCall().
class ComInstrument final : public Instrument {
 public:
  explicit ComInstrument(::_CInstrument* object) : object_(object) {}

  ::_CInstrument* object() const { return object_.Get(); }

  std::wstring Model() const override;
  void SetModel(const std::wstring& value) override;
  std::wstring Serial() const override;
  void SetSerial(const std::wstring& value) override;
  std::wstring IPAddress() const override;
  void SetIPAddress(const std::wstring& value) override;
  EIPType IPType() const override;
  void SetIPType(EIPType value) override;
  std::wstring MACAddress() const override;
  void SetMACAddress(const std::wstring& value) override;

 private:
  Microsoft::WRL::ComPtr<::_CInstrument> object_;
};

}  // namespace kesp
