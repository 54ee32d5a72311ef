// The code page of the system's ANSI text, read once from Windows.
#include <windows.h>

#include "support/text.h"

namespace kesp {

namespace {

bool IsSingleByte(UINT code_page) {
  CPINFO info{};
  return GetCPInfo(code_page, &info) != FALSE && info.MaxCharSize == 1;
}

std::array<char16_t, 256> CharactersOf(UINT code_page) {
  std::array<char16_t, 256> characters{};
  for (std::size_t byte = 0; byte < characters.size(); ++byte) {
    const char source = static_cast<char>(byte);
    std::array<wchar_t, 2> target{};
    const int length = MultiByteToWideChar(code_page, MB_ERR_INVALID_CHARS, &source, 1, target.data(), 2);
    if (length == 1) characters[byte] = static_cast<char16_t>(target[0]);
  }
  return characters;
}

}  // namespace

const CodePage& SystemCodePage() {
  static const bool single_byte = IsSingleByte(GetACP());
  if (!single_byte) return Windows1252();
  static const CodePage page(CharactersOf(GetACP()));
  return page;
}

}  // namespace kesp
