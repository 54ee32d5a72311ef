// Conversions between bytes on the wire and the texts of personality files and logs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesp::simulator {

// The bytes meant by a UTF-8 text: one for each character U+0000 to U+00FF. Nothing when the text holds
// another character or is not UTF-8.
std::optional<std::string> BytesFromText(std::string_view utf8);

// The bytes of a text such as "00 FF 0d": pairs of hexadecimal digits, blanks allowed between pairs. Nothing
// when the text is anything else.
std::optional<std::string> BytesFromHex(std::string_view hex);

// The bytes in double quotes, readable on one line: \r, \n, \t, \\, \" and \xNN for what is not printable
// ASCII. Of more than `limit` bytes the first ones and "...", so that a log stays a log.
std::string Quoted(std::string_view bytes, std::size_t limit = 60);

// A number of things: "1 byte", "30 bytes".
std::string Counted(std::size_t count, const std::string& what);

// A number in upper-case hexadecimal without leading zeros, and back; nothing for a text that is no such
// number.
std::string Hexadecimal(std::uint32_t value);
std::optional<std::uint32_t> FromHexadecimal(std::string_view text);

}  // namespace kesp::simulator
