// From characters to bytes and back.
#include "console/received_bytes_win.h"

#include <windows.h>

#include <algorithm>

namespace kesp::console {
namespace {

constexpr UINT kWindows1252 = 1252;
constexpr wchar_t kFirstStandIn = 0xF700;

UINT PageOfTheLibrary() {
  CPINFO info{};
  const UINT page = GetACP();
  return GetCPInfo(page, &info) != FALSE && info.MaxCharSize == 1 ? page : kWindows1252;
}

char ByteOf(wchar_t character, UINT page) {
  if (character < 0x80) return static_cast<char>(character);
  char byte = 0;
  BOOL replaced = FALSE;
  const int length =
      WideCharToMultiByte(page, WC_NO_BEST_FIT_CHARS, &character, 1, &byte, 1, nullptr, &replaced);
  if (length == 1 && !replaced) return byte;
  return static_cast<char>(character >= kFirstStandIn ? character - kFirstStandIn : character);
}

wchar_t CharacterOf(char byte, UINT page) {
  wchar_t character = 0;
  const int length = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, &byte, 1, &character, 1);
  const auto number = static_cast<unsigned char>(byte);
  return length == 1 && ByteOf(character, page) == byte ? character : static_cast<wchar_t>(number);
}

}  // namespace

std::wstring LibraryText(std::string_view bytes) {
  const UINT page = PageOfTheLibrary();
  std::wstring text(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(),
                 [page](char byte) { return CharacterOf(byte, page); });
  return text;
}

std::string ReceivedBytes(std::wstring_view text) {
  const UINT page = PageOfTheLibrary();
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [page](wchar_t character) { return ByteOf(character, page); });
  return bytes;
}

}  // namespace kesp::console
