// Starting, watching and ending processes of clients.
#include "tests/threads/client_process.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace kesp::threads {

ClientProcess::ClientProcess(const std::wstring& program, const std::wstring& arguments) {
  std::array<wchar_t, MAX_PATH> own{};
  GetModuleFileNameW(nullptr, own.data(), MAX_PATH);
  const std::wstring path = (std::filesystem::path(own.data()).parent_path() / program).wstring();
  std::wstring command = L"\"" + path + L"\" " + arguments;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  EXPECT_NE(CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &started),
            FALSE)
      << GetLastError();
  CloseHandle(started.hThread);
  process_ = started.hProcess;
}

ClientProcess::~ClientProcess() {
  TerminateProcess(process_, 1);
  WaitForSingleObject(process_, 10000);
  CloseHandle(process_);
}

DWORD ClientProcess::CodeWithin(DWORD milliseconds) const {
  DWORD code = STILL_ACTIVE;
  if (WaitForSingleObject(process_, milliseconds) == WAIT_OBJECT_0) GetExitCodeProcess(process_, &code);
  return code;
}

WorkingFolder::WorkingFolder() {
  std::array<wchar_t, MAX_PATH + 1> outer{};
  GetTempPathW(static_cast<DWORD>(outer.size()), outer.data());
  outer_ = outer.data();
  path_ = outer_ + L"kesp-threads-" + std::to_wstring(GetCurrentProcessId());
  CreateDirectoryW(path_.c_str(), nullptr);
  SetEnvironmentVariableW(L"TMP", path_.c_str());
}

WorkingFolder::~WorkingFolder() {
  SetEnvironmentVariableW(L"TMP", outer_.c_str());
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace kesp::threads
