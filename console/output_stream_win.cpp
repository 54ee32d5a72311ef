// Writing to a console in its own characters, and to all else in bytes.
#include "console/output_stream_win.h"

#include <algorithm>
#include <system_error>

#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

// Older consoles refuse more than 64 KB at once.
constexpr std::size_t kMostAtOnce = 8192;

std::error_code ReasonOf(DWORD error) {
  switch (error) {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return std::make_error_code(std::errc::no_space_on_device);
    case ERROR_NO_DATA:
    case ERROR_BROKEN_PIPE:
    case ERROR_PIPE_NOT_CONNECTED:
      return std::make_error_code(std::errc::broken_pipe);
    case ERROR_INVALID_HANDLE:
      return std::make_error_code(std::errc::bad_file_descriptor);
    default:
      return std::make_error_code(std::errc::io_error);
  }
}

// How many were written; 0 with an error.
DWORD WritePart(HANDLE handle, std::wstring_view text) {
  DWORD written = 0;
  return WriteConsoleW(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) ? written : 0;
}

DWORD WritePart(HANDLE handle, std::string_view bytes) {
  DWORD written = 0;
  return WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ? written : 0;
}

template <class Text>
bool WriteAll(HANDLE handle, Text text) {
  while (!text.empty()) {
    const DWORD written = WritePart(handle, text.substr(0, kMostAtOnce));
    if (written == 0) return false;
    text.remove_prefix(written);
  }
  return true;
}

}  // namespace

OutputStream::OutputStream(const char* name, DWORD which) : name_(name), handle_(GetStdHandle(which)) {
  DWORD mode = 0;
  is_console_ = GetConsoleMode(handle_, &mode) != 0;
}

int OutputStream::Width() const {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (!is_console_ || !GetConsoleScreenBufferInfo(handle_, &info)) return 0;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

void OutputStream::Write(std::string_view text) const {
  const bool written =
      is_console_ ? WriteAll<std::wstring_view>(handle_, ToWide(text)) : WriteAll(handle_, text);
  if (!written) throw std::system_error(ReasonOf(GetLastError()), name_);
}

}  // namespace kesp::console
