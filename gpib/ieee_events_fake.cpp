// The listener that writes down the IEEE-488 transport's events, each as a line of text.
#include "gpib/ieee_events_fake.h"

namespace kesp {

CKespIEEEEventsFake::CKespIEEEEventsFake() = default;

CKespIEEEEventsFake::~CKespIEEEEventsFake() = default;

void CKespIEEEEventsFake::AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) {
  Heard(L"AutoDetectUpdate", {cmd, std::to_wstring(Address), Text(Abort)});
  if (++updates_ == abort_at_update) Abort = true;
}

void CKespIEEEEventsFake::AutoDetectBegin() {
  Heard(L"AutoDetectBegin");
}

void CKespIEEEEventsFake::AutoDetectEnd() {
  Heard(L"AutoDetectEnd");
}

}  // namespace kesp
