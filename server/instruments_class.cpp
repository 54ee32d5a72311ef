// The COM object of the collection of instruments.
#include "server/instruments_class.h"

#include <wrl/client.h>

#include <utility>
#include <vector>

#include "server/com_instrument.h"
#include "server/object_enumerator.h"
#include "server/variant_bridge.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

const ClassDescription kDescription{__uuidof(::CInstruments), __uuidof(::_CInstruments), nullptr};

struct InstrumentTraits {
  static HRESULT Copy(const ComPtr<::_CInstrument>& item, VARIANT* element) {
    V_DISPATCH(element) = item.Get();
    V_DISPATCH(element)->AddRef();
    V_VT(element) = VT_DISPATCH;
    return S_OK;
  }
};

using InstrumentEnumerator =
    ObjectEnumerator<IEnumVARIANT, VARIANT, ComPtr<::_CInstrument>, InstrumentTraits>;

// Every item that is reached through COM was added through COM or made as a COM object by a discovery.
::_CInstrument* ComObjectOf(const std::shared_ptr<Instrument>& item) {
  return static_cast<ComInstrument&>(*item).object();
}

}  // namespace

InstrumentsClass::InstrumentsClass(std::shared_ptr<CInstruments> object)
    : AutomationObject(kDescription), object_(std::move(object)) {}

HRESULT InstrumentsClass::Item(VARIANT vIndexKey, ::_CInstrument** retval) {
  return Get(retval, [&] {
    ::_CInstrument* item = ComObjectOf(object_->Item(IndexOrKeyOf(vIndexKey)));
    item->AddRef();
    return item;
  });
}

HRESULT InstrumentsClass::AddReference(::_CInstrument* objObject, BSTR sKey) {
  return Put([&] {
    object_->AddReference(objObject != nullptr ? std::make_shared<ComInstrument>(objObject) : nullptr,
                          TextOf(sKey));
  });
}

HRESULT InstrumentsClass::Remove(VARIANT vIndexKey) {
  return Put([&] { object_->Remove(IndexOrKeyOf(vIndexKey)); });
}

HRESULT InstrumentsClass::Clear() {
  return Put([&] { object_->Clear(); });
}

HRESULT InstrumentsClass::get_Count(LONG* retval) {
  return Get(retval, [&] { return object_->Count(); });
}

HRESULT InstrumentsClass::get_NewEnum(IUnknown** retval) {
  return Get(retval, [&] {
    auto list = std::make_shared<std::vector<ComPtr<::_CInstrument>>>();
    for (const auto& item : object_->Items()) list->emplace_back(ComObjectOf(item));
    return static_cast<IUnknown*>(new InstrumentEnumerator(std::move(list)));
  });
}

}  // namespace kesp
