// Access to the properties of an instrument's COM object.
#include "server/com_instrument.h"

#include "server/text_bridge.h"
#include "support/failure.h"

namespace kesp {

namespace {

using TextSetter = HRESULT (STDMETHODCALLTYPE ::_CInstrument::*)(BSTR);
using TextGetter = HRESULT (STDMETHODCALLTYPE ::_CInstrument::*)(BSTR*);

std::wstring Read(::_CInstrument* object, TextGetter getter) {
  BSTR text = nullptr;
  if (FAILED((object->*getter)(&text))) return {};
  std::wstring value = TextOf(text);
  SysFreeString(text);
  return value;
}

void Put(::_CInstrument* object, TextSetter setter, const std::wstring& value) {
  if (FAILED((object->*setter)(Bstr(value).get()))) throw InvalidCall();
}

}  // namespace

std::wstring ComInstrument::Model() const {
  return Read(object_.Get(), &::_CInstrument::get_Model);
}
void ComInstrument::SetModel(const std::wstring& value) {
  Put(object_.Get(), &::_CInstrument::put_Model, value);
}

std::wstring ComInstrument::Serial() const {
  return Read(object_.Get(), &::_CInstrument::get_Serial);
}
void ComInstrument::SetSerial(const std::wstring& value) {
  Put(object_.Get(), &::_CInstrument::put_Serial, value);
}

std::wstring ComInstrument::IPAddress() const {
  return Read(object_.Get(), &::_CInstrument::get_IPAddress);
}
void ComInstrument::SetIPAddress(const std::wstring& value) {
  Put(object_.Get(), &::_CInstrument::put_IPAddress, value);
}

EIPType ComInstrument::IPType() const {
  ::EIPType value = ::ipStatic;
  object_->get_IPType(&value);
  return static_cast<EIPType>(value);
}
void ComInstrument::SetIPType(EIPType value) {
  if (FAILED(object_->put_IPType(static_cast<::EIPType>(value)))) throw InvalidCall();
}

std::wstring ComInstrument::MACAddress() const {
  return Read(object_.Get(), &::_CInstrument::get_MACAddress);
}
void ComInstrument::SetMACAddress(const std::wstring& value) {
  Put(object_.Get(), &::_CInstrument::put_MACAddress, value);
}

}  // namespace kesp
