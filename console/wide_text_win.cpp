// UTF-8 and UTF-16, by the system's own conversion.
#include "console/wide_text_win.h"

#include <windows.h>

namespace kesp::console {

std::string ToUtf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(static_cast<std::size_t>(
                        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
                    '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                      nullptr);
  return bytes;
}

std::wstring ToWide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(
      static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

}  // namespace kesp::console
