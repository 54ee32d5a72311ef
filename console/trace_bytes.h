// From the text in a trace back to the bytes on the wire.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kesp::console {

// The characters of a UTF-8 text as bytes of the code page Windows-1252, which the library uses for the wire
// where the system's own page has several bytes a character. Nothing where there is another character, or the
// text is not UTF-8.
std::optional<std::string> WireBytesOfUtf8(std::string_view text);

// Bytes as a text in UTF-8, with a character U+0000 to U+00FF for each.
std::string TextOfBytes(std::string_view bytes);

// On one line: UTF-8 stays as it is, and other bytes are taken for letters of Windows-1252; \r, \n, \t, \\,
// and \xNN for the other control characters.
std::string Readable(std::string_view bytes);

}  // namespace kesp::console
