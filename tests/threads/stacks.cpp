// The stacks of another process, by the system's library for debuggers.
#include "tests/threads/stacks.h"

// Behind windows.h.
#include <dbghelp.h>
#include <tlhelp32.h>

#include <algorithm>
#include <array>
#include <sstream>

#include "tests/threads/function_names.h"

namespace kesp::threads {
namespace {

constexpr int kMostFunctions = 40;
constexpr bool kIs64Bit = sizeof(void*) == 8;

// The registers have names of their own in each width.
template <class Context>
STACKFRAME64 FirstFrame(const Context& context) {
  STACKFRAME64 frame{};
  frame.AddrPC.Mode = frame.AddrStack.Mode = frame.AddrFrame.Mode = AddrModeFlat;
  if constexpr (requires { context.Rip; }) {
    frame.AddrPC.Offset = context.Rip;
    frame.AddrStack.Offset = context.Rsp;
    frame.AddrFrame.Offset = context.Rbp;
  } else {
    frame.AddrPC.Offset = context.Eip;
    frame.AddrStack.Offset = context.Esp;
    frame.AddrFrame.Offset = context.Ebp;
  }
  return frame;
}

Stack StackOf(HANDLE process, HANDLE thread, const FunctionNames& names) {
  Stack stack;
  CONTEXT context{};
  context.ContextFlags = CONTEXT_FULL;
  SuspendThread(thread);
  if (GetThreadContext(thread, &context) != FALSE) {
    STACKFRAME64 frame = FirstFrame(context);
    constexpr DWORD kMachine = kIs64Bit ? IMAGE_FILE_MACHINE_AMD64 : IMAGE_FILE_MACHINE_I386;
    for (int depth = 0; depth < kMostFunctions; ++depth) {
      if (StackWalk64(kMachine, process, thread, &frame, &context, nullptr, SymFunctionTableAccess64,
                      SymGetModuleBase64, nullptr) == FALSE) {
        break;
      }
      stack.push_back(names.Of(frame.AddrPC.Offset));
    }
  }
  ResumeThread(thread);
  return stack;
}

std::vector<DWORD> ThreadsOf(DWORD process) {
  std::vector<DWORD> threads;
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL found = Thread32First(snapshot, &entry); found != FALSE; found = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == process) threads.push_back(entry.th32ThreadID);
  }
  CloseHandle(snapshot);
  return threads;
}

}  // namespace

std::vector<Stack> StacksOf(HANDLE process) {
  const FunctionNames names(process);
  std::vector<Stack> stacks;
  for (const DWORD id : ThreadsOf(GetProcessId(process))) {
    HANDLE thread = OpenThread(THREAD_ALL_ACCESS, FALSE, id);
    if (thread == nullptr) continue;
    stacks.push_back(StackOf(process, thread, names));
    CloseHandle(thread);
  }
  return stacks;
}

std::string Text(const std::vector<Stack>& stacks) {
  std::ostringstream text;
  for (std::size_t number = 0; number < stacks.size(); ++number) {
    text << "thread " << number + 1 << " of " << stacks.size() << ":\n";
    for (const std::string& function : stacks[number]) text << "  " << function << '\n';
  }
  return text.str();
}

bool IsLostByWine(const std::vector<Stack>& stacks) {
  if (stacks.size() != 1 || stacks.front().empty()) return false;
  constexpr std::array kFunctions = {"ntdll!RtlWakeAddressSingle+", "ntdll!RtlWakeAddressAll+",
                                     "ntdll!RtlWaitOnAddress+"};
  return std::any_of(kFunctions.begin(), kFunctions.end(),
                     [&](const char* function) { return stacks.front().front().starts_with(function); });
}

}  // namespace kesp::threads
