// The code page of the system's ANSI text, read once from Windows.
#include <optional>
#include <utility>

#include "support/ansi_text.h"
#include "support/code_page_win.h"
#include "support/text.h"

namespace kesp {

namespace {

bool IsSingleByte(UINT code_page) {
  CPINFO info{};
  return GetCPInfo(code_page, &info) != FALSE && info.MaxCharSize == 1;
}

// All begin with ASCII, which is not asked for: the page is kept for good, and a refusal of Windows would
// make a line end unknown for as long.
std::array<char16_t, 256> CharactersOf(UINT code_page) {
  constexpr std::size_t kAscii = 0x80;
  std::array<char16_t, 256> characters{};
  for (std::size_t byte = 0; byte < kAscii; ++byte) characters[byte] = static_cast<char16_t>(byte);
  for (std::size_t byte = kAscii; byte < characters.size(); ++byte) {
    const char source = static_cast<char>(byte);
    std::array<wchar_t, 2> target{};
    const int length = MultiByteToWideChar(code_page, MB_ERR_INVALID_CHARS, &source, 1, target.data(), 2);
    if (length == 1) characters[byte] = static_cast<char16_t>(target[0]);
  }
  return characters;
}

bool SystemPageIsSingleByte() {
  static const bool is_single_byte = IsSingleByte(GetACP());
  return is_single_byte;
}

}  // namespace

const CodePage& SystemCodePage() {
  if (!SystemPageIsSingleByte()) return Windows1252();
  static const CodePage page(CharactersOf(GetACP()));
  return page;
}

std::string ToAnsi(std::wstring_view text) {
  // The table first: it has characters of its own for the bytes that the code page leaves undefined.
  if (SystemPageIsSingleByte()) {
    if (std::optional<std::string> exact = SystemCodePage().ToExactBytes(text)) return *std::move(exact);
  }
  return ToCodePage(CP_ACP, text);
}

std::string ToCodePage(UINT code_page, std::wstring_view text) {
  const auto length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(code_page, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(code_page, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

}  // namespace kesp
