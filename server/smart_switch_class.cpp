// The COM object of the port switch.
#include "server/smart_switch_class.h"

#include <utility>

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespSmartSwitch3), __uuidof(::_CKespSmartSwitch3), nullptr};

}  // namespace

SmartSwitchClass::SmartSwitchClass(std::shared_ptr<CKespSmartSwitch3> object)
    : AutomationObject(kDescription), object_(std::move(object)) {}

}  // namespace kesp
