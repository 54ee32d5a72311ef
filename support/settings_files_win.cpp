// Settings files by GetPrivateProfileString and WritePrivateProfileString.
#include "support/settings_files_win.h"

#include <windows.h>

#include <array>

namespace kesp {

namespace {

// Windows looks for a bare name in its own folder, where these files do not belong.
bool NamesFile(const std::wstring& path) {
  return path.find(L'\\') != std::wstring::npos;
}

// Keeps other programs of the user's session from changing a settings file. Changes take milliseconds. Where
// one takes longer, or the system gives no mutex, nobody is held back.
class ChangeLock {
 public:
  ChangeLock() : mutex_(CreateMutexW(nullptr, FALSE, L"Local\\KespCommObj settings files")) {
    constexpr DWORD kLongestMs = 50;
    const DWORD result = mutex_ == nullptr ? WAIT_FAILED : WaitForSingleObject(mutex_, kLongestMs);
    // A program that ended while it held the mutex is no reason to wait.
    is_held_ = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  }
  ~ChangeLock() {
    if (is_held_) ReleaseMutex(mutex_);
    if (mutex_ != nullptr) CloseHandle(mutex_);
  }
  ChangeLock(const ChangeLock&) = delete;
  ChangeLock& operator=(const ChangeLock&) = delete;

  bool IsHeld() const { return is_held_; }

 private:
  HANDLE mutex_;
  bool is_held_ = false;
};

bool WriteInto(const std::wstring& path, const std::wstring& section, const std::wstring& key,
               const std::wstring& value) {
  return WritePrivateProfileStringW(section.c_str(), key.c_str(), value.c_str(), path.c_str()) != 0;
}

// Changes a copy and puts it in the file's place, so that a program which ends at any moment leaves the whole
// file, old or new. False where the folder or whoever has the file open does not allow that; the file is as
// it was then.
bool Replace(const std::wstring& path, const std::wstring& section, const std::wstring& key,
             const std::wstring& value) {
  const std::wstring copy = path + L".new";
  if (CopyFileW(path.c_str(), copy.c_str(), FALSE) == FALSE) {
    if (GetLastError() != ERROR_FILE_NOT_FOUND) return false;
    // A program that ended in the middle of a change may have left its copy.
    DeleteFileW(copy.c_str());
  }
  if (WriteInto(copy, section, key, value) &&
      MoveFileExW(copy.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE) {
    return true;
  }
  // A copy of a write-protected file is write-protected, too.
  SetFileAttributesW(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
  DeleteFileW(copy.c_str());
  return false;
}

}  // namespace

std::wstring SettingsFilesWin::Read(const std::wstring& path, const std::wstring& section,
                                    const std::wstring& key, const std::wstring& otherwise) {
  if (!NamesFile(path)) return otherwise;
  std::array<wchar_t, 256> text{};
  const DWORD length = GetPrivateProfileStringW(section.c_str(), key.c_str(), otherwise.c_str(), text.data(),
                                                static_cast<DWORD>(text.size()), path.c_str());
  return {text.data(), length};
}

bool SettingsFilesWin::Write(const std::wstring& path, const std::wstring& section, const std::wstring& key,
                             const std::wstring& value) {
  if (!NamesFile(path)) return false;
  // Most objects would write what is there already. A key that is absent must not look like that.
  if (Read(path, section, key, value.empty() ? L"?" : L"") == value) return true;
  const ChangeLock lock;
  return (lock.IsHeld() && Replace(path, section, key, value)) || WriteInto(path, section, key, value);
}

}  // namespace kesp
