// The bytes of a text of the library, and the text of bytes.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

// The library gives each byte a character of its own, by the system's code page or, where that is not a
// single-byte one, by Windows-1252; bytes that it leaves undefined are control characters, or begin at
// U+F700.
std::string ReceivedBytes(std::wstring_view text);
// The text that the library makes of bytes, or sends as them.
std::wstring LibraryText(std::string_view bytes);

}  // namespace kesp::console
