// Trimming of blanks and removal of line ends.
#include "support/text_edit.h"

namespace kesp {

namespace {

template <typename Character>
std::basic_string<Character> Trimmed(std::basic_string_view<Character> text) {
  constexpr auto kBlank = static_cast<Character>(' ');
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == text.npos) return {};
  const std::size_t last = text.find_last_not_of(kBlank);
  return std::basic_string<Character>(text.substr(first, last - first + 1));
}

}  // namespace

std::wstring Trim(std::wstring_view text) {
  return Trimmed(text);
}

std::string Trim(std::string_view text) {
  return Trimmed(text);
}

std::wstring StripLineEnds(std::wstring text) {
  for (wchar_t& c : text) {
    if (c == L'\r' || c == L'\n') c = L' ';
  }
  return Trim(text);
}

}  // namespace kesp
