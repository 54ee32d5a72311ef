// From characters back to bytes.
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

}  // namespace

std::string ReceivedBytes(std::wstring_view text) {
  const UINT page = PageOfTheLibrary();
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [page](wchar_t character) { return ByteOf(character, page); });
  return bytes;
}

}  // namespace kesp::console
