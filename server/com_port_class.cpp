// The COM object of the serial transport.
#include "server/com_port_class.h"

#include "server/adopt.h"
#include "support/environment_win.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespCOMPort3), __uuidof(::_CKespCOMPort3),
                                    &__uuidof(::__CKespCOMPort3)};

}  // namespace

ComPortClass::ComPortClass()
    : AutomationObject(kDescription),
      events_(static_cast<::_CKespCOMPort3*>(this), __uuidof(::__CKespCOMPort3)),
      object_(std::make_unique<CKespCOMPort3>(SystemEnvironment())) {
  smart_switch_ = Adopt(new SmartSwitchClass(object_->SmartSwitch()));
}

HRESULT ComPortClass::get_SmartSwitch(::_CKespSmartSwitch3** retval) {
  return Get(retval, [&] {
    smart_switch_->AddRef();
    return static_cast<::_CKespSmartSwitch3*>(smart_switch_.Get());
  });
}

void* ComPortClass::FindInterface(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? &events_ : nullptr;
}

}  // namespace kesp
