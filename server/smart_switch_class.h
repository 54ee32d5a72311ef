// The COM object of the class CKespSmartSwitch3.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "serial/smart_switch.h"
#include "server/automation_object.h"
#include "server/com_headers.h"

namespace kesp {

// Wraps the port switch of a serial transport. Clients get it from there; it shares the switch, so it may
// outlive the transport.
class SmartSwitchClass final : public AutomationObject<::_CKespSmartSwitch3> {
 public:
  explicit SmartSwitchClass(std::shared_ptr<CKespSmartSwitch3> object);

  HRESULT STDMETHODCALLTYPE get_SSPort(BSTR* retval) override {
    return Get(retval, [&] { return object_->SSPort(); });
  }
  HRESULT STDMETHODCALLTYPE put_SSPort(BSTR vData) override {
    return Put([&] { object_->SetSSPort(TextOf(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_Style(::ESmartSwitchStyle3* retval) override {
    return Get(retval, [&] { return object_->Style(); });
  }
  HRESULT STDMETHODCALLTYPE put_Style(::ESmartSwitchStyle3 vData) override {
    return Put([&] { object_->SetStyle(static_cast<ESmartSwitchStyle3>(vData)); });
  }
  HRESULT STDMETHODCALLTYPE get_CurrentPort(BSTR* retval) override {
    return Get(retval, [&] { return object_->CurrentPort(); });
  }
  HRESULT STDMETHODCALLTYPE get_NumPorts(SHORT* retval) override {
    return Get(retval, [&] { return object_->NumPorts(); });
  }

 private:
  std::shared_ptr<CKespSmartSwitch3> object_;
};

}  // namespace kesp
