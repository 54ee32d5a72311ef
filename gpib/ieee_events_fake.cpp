// The listener that writes down the IEEE-488 transport's events, each as a line of text.
#include "gpib/ieee_events_fake.h"

namespace kesp {

CKespIEEEEventsFake::CKespIEEEEventsFake() = default;

CKespIEEEEventsFake::~CKespIEEEEventsFake() = default;

void CKespIEEEEventsFake::AutoDetectUpdate(const std::wstring& cmd, std::int16_t Address, bool& Abort) {
  Heard(L"AutoDetectUpdate", cmd + L"," + std::to_wstring(Address) + L"," + (Abort ? L"True" : L"False"));
  if (++updates_ == abort_at_update) Abort = true;
}

void CKespIEEEEventsFake::AutoDetectBegin() {
  Heard(L"AutoDetectBegin");
}

void CKespIEEEEventsFake::AutoDetectEnd() {
  Heard(L"AutoDetectEnd");
}

void CKespIEEEEventsFake::Heard(const std::wstring& name, const std::wstring& arguments) {
  record(name + L"(" + arguments + L")");
  const auto found = handlers.find(name);
  if (found == handlers.end()) return;
  const std::function<void()> handler = found->second;  // it may take itself out of the map
  handler();
}

}  // namespace kesp
