// The ending by which a help file is told.
#include "support/help_file.h"

#include <algorithm>

namespace kesp {

namespace {

constexpr std::wstring_view kHtmlHelpEnding = L".chm";

wchar_t LowerCase(wchar_t character) {
  return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

}  // namespace

HelpFormat FormatOfHelpFile(std::wstring_view path) {
  if (path.size() < kHtmlHelpEnding.size()) return HelpFormat::kWinHelp;
  const std::wstring_view ending = path.substr(path.size() - kHtmlHelpEnding.size());
  const bool html = std::equal(ending.begin(), ending.end(), kHtmlHelpEnding.begin(),
                               [](wchar_t typed, wchar_t wanted) { return LowerCase(typed) == wanted; });
  return html ? HelpFormat::kHtmlHelp : HelpFormat::kWinHelp;
}

}  // namespace kesp
