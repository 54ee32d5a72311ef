// Folders and files, without the redirection that Windows has for 32-bit programs.
#include "console/program_folders_win.h"

#include <windows.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "console/wide_text_win.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

// While it lives, "System32" means that folder to a 32-bit program, too. Nothing is loaded meanwhile.
class PlainFileNames {
 public:
  PlainFileNames() : is_off_(kProgramBits == 32 && Wow64DisableWow64FsRedirection(&before_) != FALSE) {}
  ~PlainFileNames() {
    if (is_off_) Wow64RevertWow64FsRedirection(before_);
  }
  PlainFileNames(const PlainFileNames&) = delete;
  PlainFileNames& operator=(const PlainFileNames&) = delete;

 private:
  void* before_ = nullptr;
  bool is_off_;
};

std::string FolderBy(UINT(WINAPI* function)(LPWSTR, UINT)) {
  std::array<wchar_t, MAX_PATH> folder{};
  return function(folder.data(), MAX_PATH) == 0 ? "" : ToUtf8(folder.data()) + "\\";
}

DWORD AttributesOf(const std::string& path) {
  const PlainFileNames plain;
  return GetFileAttributesW(ToWide(path).c_str());
}

}  // namespace

std::string OwnFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return ToUtf8(path.substr(0, path.rfind(L'\\') + 1));
}

std::string OtherFolder() {
  return FolderBeside(OwnFolder(), kProgramBits == 64 ? "win32" : "win64");
}

std::string WindowsFolder() {
  return FolderBy(GetSystemWindowsDirectoryW);
}

std::string SystemFolder(int bits) {
  return WindowsFolder() + (bits == 32 && WindowsBits() == 64 ? "SysWOW64\\" : "System32\\");
}

int WindowsBits() {
  BOOL is_emulated = FALSE;
  return kProgramBits == 64 ||
                 (IsWow64Process(GetCurrentProcess(), &is_emulated) != FALSE && is_emulated != FALSE)
             ? 64
             : 32;
}

bool RunsBothWidths() {
  return kProgramBits == 32 ? WindowsBits() == 64 : IsFile(SystemFolder(32) + "ole32.dll");
}

std::optional<std::string> BytesOf(const std::string& path) {
  const PlainFileNames plain;
  std::ifstream file(std::filesystem::path(ToWide(path)), std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

bool IsFile(const std::string& path) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool CanAppendTo(const std::string& path) {
  const bool is_there = AttributesOf(path) != INVALID_FILE_ATTRIBUTES;
  const PlainFileNames plain;
  HANDLE file = is_there
                    ? CreateFileW(ToWide(path).c_str(), FILE_APPEND_DATA,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, 0, nullptr)
                    : CreateFileW(ToWide(path).c_str(), FILE_APPEND_DATA | DELETE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  // A program that writes into it now can.
  if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(file);
  return true;
}

}  // namespace kesp::console
