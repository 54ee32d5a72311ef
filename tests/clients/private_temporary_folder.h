// A temporary folder of the test program's own.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace kesp::clients {

// While it lives, the system's temporary folder is a new one for this process, so that programs which run
// side by side do not write the same files there. It must be empty at its end.
class PrivateTemporaryFolder {
 public:
  PrivateTemporaryFolder() : outer_(Present()) {
    path_ = outer_ + L"kesp test " + std::to_wstring(GetCurrentProcessId());
    CreateDirectoryW(path_.c_str(), nullptr);
    SetEnvironmentVariableW(L"TMP", path_.c_str());
  }
  ~PrivateTemporaryFolder() {
    SetEnvironmentVariableW(L"TMP", outer_.c_str());
    RemoveDirectoryW(path_.c_str());
  }
  PrivateTemporaryFolder(const PrivateTemporaryFolder&) = delete;
  PrivateTemporaryFolder& operator=(const PrivateTemporaryFolder&) = delete;

  // A file in it, which may or may not exist.
  std::wstring FilePath(const std::wstring& name) const { return path_ + L"\\" + name; }

 private:
  static std::wstring Present() {
    std::array<wchar_t, MAX_PATH + 1> path{};
    GetTempPathW(static_cast<DWORD>(path.size()), path.data());
    return path.data();
  }

  std::wstring outer_;
  std::wstring path_;
};

}  // namespace kesp::clients
