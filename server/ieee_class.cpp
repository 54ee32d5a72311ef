// The COM object of the IEEE-488 transport.
#include "server/ieee_class.h"

#include "gpib/system_gpib_driver_win.h"
#include "server/text_bridge.h"
#include "support/environment_win.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CKespIEEE), __uuidof(::_CKespIEEE), &__uuidof(::__CKespIEEE)};

}  // namespace

IeeeClass::IeeeClass()
    : OperatingObject(kDescription, L"CKespIEEE"),
      events_(static_cast<::_CKespIEEE*>(this), __uuidof(::__CKespIEEE)),
      bridge_(events_),
      object_(std::make_unique<CKespIEEE>(SystemEnvironment(), SystemGpibDriver(), &bridge_)) {}

HRESULT IeeeClass::AutoDetect(BSTR* result, ::EDetectLevel DetectLevel, ::ESearchOption SearchOption,
                              VARIANT_BOOL* retval) {
  return Operate(
      L"AutoDetect()", retval,
      [&] {
        return ReadInto(result, [&](auto& answer) {
          return object_->AutoDetect(answer, static_cast<EDetectLevel>(DetectLevel),
                                     static_cast<ESearchOption>(SearchOption));
        });
      },
      result);
}

HRESULT IeeeClass::ReadLine(BSTR* result, VARIANT_BOOL* retval) {
  return Operate(
      L"ReadLine()", retval,
      [&] { return ReadInto(result, [&](auto& reply) { return object_->ReadLine(reply); }); }, result);
}

void* IeeeClass::FindInterface(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? &events_ : nullptr;
}

}  // namespace kesp
