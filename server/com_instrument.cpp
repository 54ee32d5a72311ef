// Access to the properties of an instrument's COM object.
#include "server/com_instrument.h"

#include "server/text_bridge.h"

namespace kesp {

namespace {

using TextGetter = HRESULT (STDMETHODCALLTYPE ::_CInstrument::*)(BSTR*);

std::wstring Read(::_CInstrument* object, TextGetter getter) {
  BSTR text = nullptr;
  if (FAILED((object->*getter)(&text))) return {};
  std::wstring value = TextOf(text);
  SysFreeString(text);
  return value;
}

}  // namespace

std::wstring ComInstrument::Model() const {
  return Read(object_.Get(), &::_CInstrument::get_Model);
}
void ComInstrument::SetModel(const std::wstring& value) {
  object_->put_Model(Bstr(value).get());
}

std::wstring ComInstrument::Serial() const {
  return Read(object_.Get(), &::_CInstrument::get_Serial);
}
void ComInstrument::SetSerial(const std::wstring& value) {
  object_->put_Serial(Bstr(value).get());
}

std::wstring ComInstrument::IPAddress() const {
  return Read(object_.Get(), &::_CInstrument::get_IPAddress);
}
void ComInstrument::SetIPAddress(const std::wstring& value) {
  object_->put_IPAddress(Bstr(value).get());
}

EIPType ComInstrument::IPType() const {
  ::EIPType value = ::ipStatic;
  object_->get_IPType(&value);
  return static_cast<EIPType>(value);
}
void ComInstrument::SetIPType(EIPType value) {
  object_->put_IPType(static_cast<::EIPType>(value));
}

std::wstring ComInstrument::MACAddress() const {
  return Read(object_.Get(), &::_CInstrument::get_MACAddress);
}
void ComInstrument::SetMACAddress(const std::wstring& value) {
  object_->put_MACAddress(Bstr(value).get());
}

}  // namespace kesp
