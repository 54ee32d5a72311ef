// The COM object of the class CInstrument.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "network/instrument.h"
#include "server/automation_object.h"
#include "server/com_headers.h"

namespace kesp {

// Wraps the record of one instrument.
class InstrumentClass final : public AutomationObject<::_CInstrument> {
 public:
  InstrumentClass();

  HRESULT STDMETHODCALLTYPE get_Model(BSTR* retval) override {
    return Get(retval, [&] { return object_->Model(); });
  }
  HRESULT STDMETHODCALLTYPE put_Model(BSTR vData) override {
    return Put([&] { object_->SetModel(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_Serial(BSTR* retval) override {
    return Get(retval, [&] { return object_->Serial(); });
  }
  HRESULT STDMETHODCALLTYPE put_Serial(BSTR vData) override {
    return Put([&] { object_->SetSerial(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_IPAddress(BSTR* retval) override {
    return Get(retval, [&] { return object_->IPAddress(); });
  }
  HRESULT STDMETHODCALLTYPE put_IPAddress(BSTR vData) override {
    return Put([&] { object_->SetIPAddress(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_IPType(::EIPType* retval) override {
    return Get(retval, [&] { return object_->IPType(); });
  }
  HRESULT STDMETHODCALLTYPE put_IPType(::EIPType vData) override {
    return Put([&] { object_->SetIPType(static_cast<EIPType>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_MACAddress(BSTR* retval) override {
    return Get(retval, [&] { return object_->MACAddress(); });
  }
  HRESULT STDMETHODCALLTYPE put_MACAddress(BSTR vData) override {
    return Put([&] { object_->SetMACAddress(TextOf(vData)); });
  }

 private:
  std::unique_ptr<CInstrument> object_ = std::make_unique<CInstrument>();
};

}  // namespace kesp
