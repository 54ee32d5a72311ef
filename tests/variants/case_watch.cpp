// Watching the cases.
#include "tests/variants/case_watch.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace kesp::variants {

namespace {

constexpr DWORD kLongestCaseMs = 30000;

std::atomic<std::uint64_t> current_case = 0;
std::atomic<DWORD> begun = 0;

void TellAndEnd(const char* what, int code) {
  std::printf("%s in case %llu\n", what, static_cast<unsigned long long>(current_case.load()));
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* pointers) {
  std::printf("exception %08lx at %p\n", pointers->ExceptionRecord->ExceptionCode,
              pointers->ExceptionRecord->ExceptionAddress);
  TellAndEnd("CRASH", kCrashed);
  return EXCEPTION_CONTINUE_SEARCH;
}

DWORD WINAPI Watch(void*) {
  for (;;) {
    Sleep(500);
    if (GetTickCount() - begun.load() > kLongestCaseMs) TellAndEnd("STUCK", kStuck);
  }
}

}  // namespace

void WatchCases() {
  begun = GetTickCount();
  SetUnhandledExceptionFilter(OnCrash);
  std::set_terminate([] { TellAndEnd("CRASH (an exception of C++)", kCrashed); });
  CloseHandle(CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr));
}

void NoteCase(std::uint64_t number) {
  current_case = number;
  begun = GetTickCount();
}

}  // namespace kesp::variants
