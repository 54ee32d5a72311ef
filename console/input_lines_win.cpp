// Lines of standard input.
#include "console/input_lines_win.h"

#include <array>
#include <string_view>

#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr wchar_t kEndOfInput = 0x1A;  // Ctrl-Z at the beginning of a line

std::string WithoutReturn(std::string line) {
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace

InputLines::InputLines() : handle_(GetStdHandle(STD_INPUT_HANDLE)) {
  is_console_ = GetConsoleMode(handle_, &mode_) != 0;
}

InputLines::~InputLines() {
  if (is_mode_set_) SetConsoleMode(handle_, mode_);
}

void InputLines::SetMode() {
  if (is_mode_set_) return;
  is_mode_set_ = true;
  SetConsoleMode(handle_, mode_ | ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT | ENABLE_PROCESSED_INPUT);
}

std::optional<std::string> InputLines::Next() {
  return is_console_ ? NextTyped() : NextRead();
}

std::optional<std::string> InputLines::NextTyped() {
  SetMode();
  std::wstring line;
  std::array<wchar_t, 1024> part;
  while (!line.ends_with(L'\n')) {
    DWORD length = 0;
    // After Ctrl-C it succeeds with nothing.
    if (!ReadConsoleW(handle_, part.data(), static_cast<DWORD>(part.size()), &length, nullptr) || length == 0)
      return std::nullopt;
    line.append(part.data(), length);
    if (line.front() == kEndOfInput) return std::nullopt;
  }
  line.pop_back();
  return WithoutReturn(ToUtf8(line));
}

std::optional<std::string> InputLines::NextRead() {
  while (waiting_.find('\n') == std::string::npos && ReadMore()) {
  }
  if (waiting_.empty()) return std::nullopt;
  const std::size_t end = waiting_.find('\n');
  std::string line = waiting_.substr(0, end);
  waiting_.erase(0, end == std::string::npos ? end : end + 1);
  if (line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
  return WithoutReturn(std::move(line));
}

bool InputLines::ReadMore() {
  std::array<char, 4096> part;
  DWORD length = 0;
  if (!ReadFile(handle_, part.data(), static_cast<DWORD>(part.size()), &length, nullptr)) return false;
  waiting_.append(part.data(), length);
  return length > 0;
}

}  // namespace kesp::console
