// The file system of Windows: existence, dates, appending, renaming, and two well-known places.
#include "support/files_win.h"

#include <windows.h>

namespace kesp {

namespace {

// Windows would take the part before a NUL for the path.
bool HoldsNul(const std::wstring& path) {
  return path.find(L'\0') != std::wstring::npos;
}

std::optional<WIN32_FILE_ATTRIBUTE_DATA> AttributesOf(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (HoldsNul(path) || GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) == FALSE) return {};
  if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return {};
  return data;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
  if (GetFileType(file) != FILE_TYPE_DISK || bytes.size() > MAXDWORD) return false;
  const auto size = static_cast<DWORD>(bytes.size());
  DWORD written = 0;
  return WriteFile(file, bytes.data(), size, &written, nullptr) != FALSE && written == size;
}

// The module that holds this code; null when Windows cannot tell.
HMODULE OwnModule() {
  static const char kInside = 0;
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&kInside), &module);
  return module;
}

}  // namespace

bool FilesWin::Exists(const std::wstring& path) {
  return AttributesOf(path).has_value();
}

std::optional<CalendarDate> FilesWin::LastModified(const std::wstring& path) {
  const auto attributes = AttributesOf(path);
  SYSTEMTIME universal{};
  SYSTEMTIME local{};
  if (!attributes || FileTimeToSystemTime(&attributes->ftLastWriteTime, &universal) == FALSE ||
      SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) == FALSE) {
    return std::nullopt;
  }
  return CalendarDate{local.wYear, local.wMonth, local.wDay};
}

bool FilesWin::Append(const std::wstring& path, std::string_view bytes) {
  if (HoldsNul(path)) return false;
  HANDLE file =
      CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool written = WriteAll(file, bytes);
  return CloseHandle(file) != FALSE && written;
}

bool FilesWin::Rename(const std::wstring& from, const std::wstring& to) {
  return !HoldsNul(from) && !HoldsNul(to) && MoveFileExW(from.c_str(), to.c_str(), 0) != FALSE;
}

std::wstring FilesWin::TemporaryFolder() {
  std::wstring folder(MAX_PATH + 1, L'\0');
  const DWORD length = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  if (length > folder.size()) return {};
  folder.resize(length);
  return folder;
}

std::wstring FilesWin::LibraryFile() {
  // The longest path that Windows handles.
  constexpr std::size_t kLongestPath = 0x8000;
  HMODULE module = OwnModule();
  if (module == nullptr) return {};
  for (std::size_t size = MAX_PATH; size <= 2 * kLongestPath; size *= 2) {
    std::wstring path(size, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(size));
    if (length >= size) continue;  // cut off
    path.resize(length);
    return path;
  }
  return {};
}

}  // namespace kesp
