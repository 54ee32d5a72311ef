// The imports that are not made to fail, with the reason.
#include <initializer_list>
#include <vector>

#include "tests/faults/functions.h"

namespace kesp::faults {

namespace {

struct Group {
  const char* reason;
  std::initializer_list<const char*> names;
};

constexpr const char* kCannotFail = "it cannot fail";
constexpr const char* kOnlyAnswers =
    "it answers a question about what is given, and every answer is a good one";
constexpr const char* kGivesBack =
    "it gives back what was taken, and fails only for what was never given out";
constexpr const char* kRuntimeThreads =
    "the runtime that is linked in has it for threads that the library does not start, or for a debugger";
constexpr const char* kRuntimeUnwinding =
    "the runtime's way through a stack; a failure is the end of any program";
constexpr const char* kRuntimeText =
    "the runtime writes or reads text with it that the library never asks for";

const std::initializer_list<Group> kGroups = {
    {kCannotFail,
     {"GetACP",
      "GetCurrentProcess",
      "GetCurrentProcessId",
      "GetCurrentThread",
      "GetCurrentThreadId",
      "GetLastError",
      "SetLastError",
      "WSAGetLastError",
      "GetLocalTime",
      "GetSystemTimeAsFileTime",
      "GetTickCount",
      "GetTickCount64",
      "MulDiv",
      "QueryPerformanceCounter",
      "QueryPerformanceFrequency",
      "Sleep",
      "GetSystemMetrics",
      "GetSysColor",
      "GetSysColorBrush",
      "GetDeviceCaps",
      "GetKeyState",
      "htons",
      "ntohl",
      "ntohs",
      "SysStringLen",
      "VariantInit",
      "memchr",
      "memcmp",
      "memcpy",
      "memmove",
      "memset",
      "strchr",
      "strcmp",
      "strlen",
      "strncmp",
      "wcslen",
      "wcstol",
      "atoi",
      "_ultoa",
      "_errno",
      "lstrcmpiA",
      "lstrcmpiW",
      "localeconv",
      "___lc_codepage_func",
      "___mb_cur_max_func",
      "__mb_cur_max",
      "__iob_func",
      "_iob",
      "_msize",
      "IsDBCSLeadByteEx",
      "IsDebuggerPresent",
      "InitializeCriticalSection",
      "DeleteCriticalSection",
      "EnterCriticalSection",
      "LeaveCriticalSection",
      "TryEnterCriticalSection",
      "AcquireSRWLockExclusive",
      "AcquireSRWLockShared",
      "ReleaseSRWLockExclusive",
      "ReleaseSRWLockShared",
      "TlsGetValue",
      "PostQuitMessage",
      "TranslateMessage",
      "SetBkColor",
      "SetTextColor"}},
    {kOnlyAnswers,
     {"IsAppThemed",      "IsChild",           "IsIconic",         "IsWindow",          "IsWindowEnabled",
      "IsWindowVisible",  "EnableWindow",      "GetDlgCtrlID",     "GetWindowLongPtrW", "GetWindowLongW",
      "MonitorFromPoint", "MonitorFromWindow", "PeekMessageW",     "SetCursor",         "ShowWindow",
      "CallWindowProcW",  "DefWindowProcW",    "DispatchMessageW", "IsDialogMessageW",  "SendMessageW"}},
    {kGivesBack, {"ReleaseMutex", "SafeArrayDestroy", "SysFreeString", "VariantClear", "LocalFree"}},
    {kRuntimeThreads,
     {"AddVectoredExceptionHandler",
      "RemoveVectoredExceptionHandler",
      "FormatMessageA",
      "GetHandleInformation",
      "GetProcessAffinityMask",
      "SetProcessAffinityMask",
      "GetThreadContext",
      "SetThreadContext",
      "GetThreadPriority",
      "SetThreadPriority",
      "OpenProcess",
      "OutputDebugStringA",
      "RaiseException",
      "ReleaseSemaphore",
      "ResetEvent",
      "SetEvent",
      "ResumeThread",
      "SuspendThread",
      "WaitForMultipleObjects",
      "_beginthreadex",
      "_endthreadex"}},
    {kRuntimeUnwinding,
     {"RtlCaptureContext", "RtlLookupFunctionEntry", "RtlUnwindEx", "RtlVirtualUnwind",
      "__C_specific_handler", "_setjmp", "_setjmp3", "longjmp", "abort", "exit", "_amsg_exit", "_assert",
      "signal", "_initterm", "_lock", "_unlock"}},
    {kRuntimeText,
     {"_close", "_read", "fprintf", "fputc", "fputs", "fputwc", "fwprintf", "fwrite", "printf", "vfprintf",
      "setlocale", "strerror"}},
    {"the loader's: the start-up code moves the image with it, or looks up the compiler's shared runtime",
     {"VirtualProtect", "VirtualQuery", "LoadLibraryA"}},
};

}  // namespace

std::span<const SteadyFunction> SteadyFunctions() {
  static const std::vector<SteadyFunction> functions = [] {
    std::vector<SteadyFunction> all;
    for (const Group& group : kGroups) {
      for (const char* name : group.names) all.push_back({name, group.reason});
    }
    return all;
  }();
  return functions;
}

}  // namespace kesp::faults
