// Reads a file that another program may be writing, by the functions of Windows: that program can give it
// another name meanwhile.
#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "console/file_pieces.h"
#include "console/utf8_path.h"

namespace kesp::console {
namespace {

class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : handle_(CreateFileW(PathOf(path).c_str(), GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0,
                            nullptr)),
        error_(handle_ == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS) {}
  ~OpenFile() {
    if (error_ == ERROR_SUCCESS) CloseHandle(handle_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  HANDLE get() const { return handle_; }
  bool IsOpen() const { return error_ == ERROR_SUCCESS; }
  // A file that is about to be deleted can be opened no more.
  bool IsMissing() const {
    return error_ == ERROR_FILE_NOT_FOUND || error_ == ERROR_PATH_NOT_FOUND || error_ == ERROR_DELETE_PENDING;
  }

 private:
  HANDLE handle_;
  DWORD error_;
};

}  // namespace

std::optional<std::uint64_t> FileOnDisk::Size() {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (GetFileAttributesExW(PathOf(path_).c_str(), GetFileExInfoStandard, &data) == FALSE ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
    return std::nullopt;
  // While a program writes, the folder may still have an older size.
  const OpenFile file(path_);
  LARGE_INTEGER size{};
  if (!file.IsOpen() || GetFileSizeEx(file.get(), &size) == FALSE)
    return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32U | data.nFileSizeLow;
  return static_cast<std::uint64_t>(size.QuadPart);
}

std::string FileOnDisk::Read(std::uint64_t place, std::size_t most) {
  const OpenFile file(path_);
  if (file.IsMissing()) return "";
  std::string bytes(most, '\0');
  DWORD count = 0;
  LARGE_INTEGER from{};
  from.QuadPart = static_cast<LONGLONG>(place);
  if (!file.IsOpen() || SetFilePointerEx(file.get(), from, nullptr, FILE_BEGIN) == FALSE ||
      ReadFile(file.get(), bytes.data(), static_cast<DWORD>(most), &count, nullptr) == FALSE)
    throw std::runtime_error(path_ + " cannot be read");
  bytes.resize(count);
  return bytes;
}

}  // namespace kesp::console
