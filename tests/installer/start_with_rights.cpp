// Starts a program without administrator's rights, as Windows does for an administrator who has not been
// asked.
//
//   start_limited PROGRAM [argument...]
//
// Ends with the program's exit code; with 99 when it cannot be started so.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

constexpr int kNotStarted = 99;

// The token that this user has beside the one with all rights; null where there is none.
HANDLE LimitedToken() {
  HANDLE own = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &own) == FALSE) return nullptr;
  TOKEN_LINKED_TOKEN linked{};
  DWORD size = 0;
  const BOOL found = GetTokenInformation(own, TokenLinkedToken, &linked, sizeof linked, &size);
  CloseHandle(own);
  if (found == FALSE) return nullptr;
  HANDLE primary = nullptr;
  DuplicateTokenEx(linked.LinkedToken, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenPrimary,
                   &primary);
  CloseHandle(linked.LinkedToken);
  return primary;
}

bool IsLimited(HANDLE token) {
  TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
  DWORD size = 0;
  return GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size) != FALSE &&
         type == TokenElevationTypeLimited;
}

// What follows the name of this program, as it was written: a setup program wants some of it without
// quotation marks.
std::wstring Command() {
  const wchar_t* rest = GetCommandLineW();
  const wchar_t end_of_name = *rest == L'"' ? *rest++ : L' ';
  while (*rest != 0 && *rest != end_of_name) ++rest;
  return *rest == 0 ? L"" : rest + 1 + std::wcsspn(rest + 1, L" ");
}

}  // namespace

int main() {
  HANDLE token = LimitedToken();
  if (token == nullptr || !IsLimited(token)) {
    std::printf("there is no token with fewer rights\n");
    return kNotStarted;
  }
  std::wstring command = Command();
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessAsUserW(token, nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                           &startup, &process) == FALSE) {
    std::printf("error %lu\n", GetLastError());
    return kNotStarted;
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = kNotStarted;
  GetExitCodeProcess(process.hProcess, &code);
  return static_cast<int>(code);
}
