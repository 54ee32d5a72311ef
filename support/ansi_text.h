// Text as the library's own files hold it: in the system's ANSI code page.
#pragma once

#include <string>
#include <string_view>

namespace kesp {

// The text in the system's ANSI code page, several bytes a character where that has them (Japanese, Chinese,
// Korean, UTF-8). A character that the page lacks becomes the one that the system puts in its place, or "?".
// In the native build the page is Windows-1252, with "?" alone.
//
// Text that SystemCodePage() made of bytes becomes the same bytes again where the ANSI code page is a
// single-byte one. Elsewhere the two differ: that table is for the wire.
std::string ToAnsi(std::wstring_view text);

}  // namespace kesp
