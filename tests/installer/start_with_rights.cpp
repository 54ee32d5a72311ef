// Starts a program with or without administrator's rights, as Windows does for an administrator who has been
// asked or has not.
//
//   start_with_rights all|limited PROGRAM [argument...]
//
// Ends with the program's exit code; with 99 when it cannot be started so. By itself Wine 8 gives a program
// all rights, Wine 10 limited ones, as Windows does.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

namespace {

constexpr int kNotStarted = 99;

bool IsLimited(HANDLE token) {
  TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
  DWORD size = 0;
  return GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size) != FALSE &&
         type == TokenElevationTypeLimited;
}

// This program's token or the one that its user has beside it; null where neither is of that kind.
HANDLE TokenFor(bool limited) {
  HANDLE own = nullptr;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own) == FALSE) return nullptr;
  if (IsLimited(own) == limited) return own;
  TOKEN_LINKED_TOKEN linked{};
  DWORD size = 0;
  const BOOL found = GetTokenInformation(own, TokenLinkedToken, &linked, sizeof linked, &size);
  CloseHandle(own);
  if (found == FALSE) return nullptr;
  HANDLE primary = nullptr;
  DuplicateTokenEx(linked.LinkedToken, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenPrimary,
                   &primary);
  CloseHandle(linked.LinkedToken);
  return primary != nullptr && IsLimited(primary) == limited ? primary : nullptr;
}

// A word of the command line, and what follows it as it was written: a setup program wants some of it without
// quotation marks.
std::wstring TakeWord(const wchar_t*& rest) {
  const wchar_t end = *rest == L'"' ? *rest++ : L' ';
  std::wstring word;
  while (*rest != 0 && *rest != end) word += *rest++;
  if (*rest != 0) ++rest;
  rest += std::wcsspn(rest, L" ");
  return word;
}

}  // namespace

int main() {
  const wchar_t* rest = GetCommandLineW();
  TakeWord(rest);
  const std::wstring rights = TakeWord(rest);
  if (rights != L"all" && rights != L"limited") return kNotStarted;
  HANDLE token = TokenFor(rights == L"limited");
  if (token == nullptr) {
    std::printf("there is no token with %ls rights\n", rights.c_str());
    return kNotStarted;
  }
  std::wstring command = rest;
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
