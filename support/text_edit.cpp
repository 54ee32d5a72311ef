// Trimming of blanks and removal of line ends.
#include "support/text_edit.h"

namespace kesp {

std::wstring Trim(std::wstring_view text) {
  const std::size_t first = text.find_first_not_of(L' ');
  if (first == std::wstring_view::npos) return {};
  const std::size_t last = text.find_last_not_of(L' ');
  return std::wstring(text.substr(first, last - first + 1));
}

std::wstring StripLineEnds(std::wstring text) {
  for (wchar_t& c : text) {
    if (c == L'\r' || c == L'\n') c = L' ';
  }
  return Trim(text);
}

}  // namespace kesp
