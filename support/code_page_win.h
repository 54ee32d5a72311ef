// Text in any code page that the system knows.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kesp {

// The text in that code page, with the system's stand-ins for characters that it lacks; nothing when the
// system does not know the page.
std::string ToCodePage(UINT code_page, std::wstring_view text);

}  // namespace kesp
