// The performance counter, the time of day, and waiting with messages.
#include "console/clock_win.h"

#include <windows.h>

#include <array>
#include <cstdio>

namespace kesp::console {
namespace {

void WorkOffMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace

std::chrono::microseconds ClockWin::Now() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER count;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&count);
  const auto seconds = count.QuadPart / frequency.QuadPart;
  const auto rest = count.QuadPart % frequency.QuadPart;
  return std::chrono::microseconds(seconds * 1'000'000 + rest * 1'000'000 / frequency.QuadPart);
}

std::string ClockWin::LocalTime() {
  SYSTEMTIME time;
  GetLocalTime(&time);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03d", time.wYear, time.wMonth,
                time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds);
  return text.data();
}

void ClockWin::Sleep(std::chrono::milliseconds duration) {
  const auto end = Now() + duration;
  const HANDLE event = interruption_.event();
  for (auto left = duration; left.count() > 0;
       left = std::chrono::ceil<std::chrono::milliseconds>(end - Now())) {
    const DWORD woken =
        MsgWaitForMultipleObjects(1, &event, FALSE, static_cast<DWORD>(left.count()), QS_ALLINPUT);
    if (woken != WAIT_OBJECT_0 + 1) return;
    WorkOffMessages();
  }
}

}  // namespace kesp::console
