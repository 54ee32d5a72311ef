// A timer without a window.
#include "console/regular_looks_win.h"

#include <utility>

namespace kesp::console {
namespace {

// So often somebody looks, also while an instrument is silent.
constexpr UINT kLookEveryMs = 100;

// The one of this thread, for the timer.
thread_local std::function<void()> under_way;

void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
  if (under_way) under_way();
}

}  // namespace

RegularLooks::RegularLooks(std::function<void()> look) : timer_(SetTimer(nullptr, 0, kLookEveryMs, OnTimer)) {
  under_way = std::move(look);
}

RegularLooks::~RegularLooks() {
  KillTimer(nullptr, timer_);
  under_way = nullptr;
}

}  // namespace kesp::console
