// In place of regsvr32: ends with 0 and does nothing, as often as C:\lazy.txt has characters, and takes one
// away each time. After that it does what regsvr32 would, which lies beside it as regsvr32-own.exe.
#include <windows.h>

#include <filesystem>
#include <string>

namespace {

bool IsLazy() {
  const std::filesystem::path rest(L"C:\\lazy.txt");
  std::error_code error;
  const auto times = std::filesystem::file_size(rest, error);
  if (error || times == 0) return false;
  std::filesystem::resize_file(rest, times - 1);
  return true;
}

std::wstring OwnPath() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return (std::filesystem::path(path).parent_path() / L"regsvr32-own.exe").wstring();
}

// What follows the program in the command line, which setup writes in quotation marks.
std::wstring Arguments() {
  const std::wstring line = GetCommandLineW();
  const bool is_quoted = line.starts_with(L'"');
  return line.substr(line.find(is_quoted ? L'"' : L' ', 1) + 1);
}

}  // namespace

int main() {
  if (IsLazy()) return 0;
  std::wstring line = L"\"" + OwnPath() + L"\" " + Arguments();
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
    return 99;
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 98;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(code);
}
