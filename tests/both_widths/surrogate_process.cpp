// Finding the system's surrogate processes.
#include "tests/both_widths/surrogate_process.h"

#include <tlhelp32.h>

#include "tests/win/window_reading.h"

namespace kesp::clients {

namespace {

bool Is32Bit(DWORD id) {
  HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
  BOOL is_32_bit = FALSE;
  if (process != nullptr) IsWow64Process(process, &is_32_bit);
  CloseHandle(process);
  return is_32_bit != FALSE;
}

bool BelongsToASurrogate(HWND window) {
  DWORD owner = 0;
  GetWindowThreadProcessId(window, &owner);
  for (const SurrogateProcess& one : SurrogateProcesses()) {
    if (one.id == owner) return true;
  }
  return false;
}

BOOL CALLBACK TakeDialog(HWND window, LPARAM found) {
  const bool is_it = IsWindowVisible(window) && HasClass(window, L"#32770") && BelongsToASurrogate(window);
  if (is_it) *reinterpret_cast<HWND*>(found) = window;
  return !is_it;
}

HWND DialogOfASurrogate() {
  HWND window = nullptr;
  EnumWindows(TakeDialog, reinterpret_cast<LPARAM>(&window));
  return window;
}

}  // namespace

std::vector<SurrogateProcess> SurrogateProcesses() {
  std::vector<SurrogateProcess> found;
  HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
    if (lstrcmpiW(entry.szExeFile, L"dllhost.exe") != 0) continue;
    found.push_back({entry.th32ProcessID, Is32Bit(entry.th32ProcessID)});
  }
  CloseHandle(snapshot);
  return found;
}

bool MayKillSurrogateProcesses() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

void KillSurrogateProcesses() {
  if (!MayKillSurrogateProcesses()) return;
  for (const SurrogateProcess& one : SurrogateProcesses()) {
    HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, one.id);
    TerminateProcess(process, 1);
    WaitForSingleObject(process, 10000);
    CloseHandle(process);
  }
}

bool CloseDialogOfASurrogate() {
  HWND window = nullptr;
  if (!WaitFor([&] { return (window = DialogOfASurrogate()) != nullptr; })) return false;
  PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
  return WaitFor([&] { return IsWindow(window) == FALSE; });
}

}  // namespace kesp::clients
