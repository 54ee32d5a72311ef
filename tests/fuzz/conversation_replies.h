// What the reference says of text replies, once more and in the plainest form.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace kesp {

inline std::string_view Trimmed(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// Blanks in the place of CR and LF, none at the ends.
inline std::wstring StrippedReply(std::wstring text) {
  for (wchar_t& character : text) {
    if (character == L'\r' || character == L'\n') character = L' ';
  }
  const std::size_t first = text.find_first_not_of(L' ');
  if (first == std::wstring::npos) return {};
  return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

inline bool IsInvalid(char byte) {
  return static_cast<unsigned char>(byte) > 128;
}

inline bool HasInvalid(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(), IsInvalid);
}

// Whether `pos`, which is 16 bits wide, tells the first invalid character.
inline bool TellsInvalid(std::string_view bytes, int pos) {
  const auto first = std::find_if(bytes.begin(), bytes.end(), IsInvalid) - bytes.begin() + 1;
  return first <= static_cast<std::ptrdiff_t>(bytes.size()) && pos == std::min<std::ptrdiff_t>(first, 32767);
}

}  // namespace kesp
