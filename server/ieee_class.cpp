// The COM object of the IEEE-488 transport.
#include "server/ieee_class.h"

#include "support/environment_win.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespIEEE), __uuidof(::_CKespIEEE), &__uuidof(::__CKespIEEE)};

}  // namespace

IeeeClass::IeeeClass()
    : AutomationObject(kDescription),
      events_(static_cast<::_CKespIEEE*>(this), __uuidof(::__CKespIEEE)),
      object_(std::make_unique<CKespIEEE>(SystemEnvironment())) {}

void* IeeeClass::FindInterface(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? &events_ : nullptr;
}

}  // namespace kesp
