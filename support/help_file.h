// Help files, told apart by their names.
#pragma once

#include <string_view>

namespace kesp {

enum class HelpFormat { kWinHelp, kHtmlHelp };

// kHtmlHelp for a file whose name ends in ".chm", in whatever case; every other file is for Windows' older
// viewer.
HelpFormat FormatOfHelpFile(std::wstring_view path);

}  // namespace kesp
