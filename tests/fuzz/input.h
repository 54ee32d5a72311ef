// The bytes of one input of a fuzzer, taken apart piece by piece.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kesp {

// Hands out the bytes from the first to the last. Once they are used up, numbers are 0 and texts are empty,
// so that a target needs no checks of its own; a loop goes on while `HasMore()`.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool HasMore() const { return !rest_.empty(); }

  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const char byte = rest_.front();
    rest_.remove_prefix(1);
    return static_cast<std::uint8_t>(byte);
  }

  bool Flag() { return (Byte() & 1) != 0; }

  // A number from 0 up to, but not including, `count`, which is at most 65536.
  std::size_t Below(std::size_t count) {
    if (count == 0) return 0;
    return (count <= 256 ? Byte() : Word()) % count;
  }

  // 16 bits.
  std::uint16_t Word() {
    const std::uint16_t high = Byte();
    return static_cast<std::uint16_t>(high << 8 | Byte());
  }

  // 32 bits.
  std::int32_t Long() {
    const std::uint32_t high = Word();
    return static_cast<std::int32_t>(high << 16 | Word());
  }

  // The next bytes, as many as there are up to `most`.
  std::string_view Bytes(std::size_t most) {
    const std::string_view bytes = rest_.substr(0, most);
    rest_.remove_prefix(bytes.size());
    return bytes;
  }

  // Bytes whose number is told by a first byte.
  std::string_view Text() { return Bytes(Byte()); }

  std::string_view Line() {
    const std::size_t end = rest_.find('\n');
    const std::string_view line = Bytes(end);
    Bytes(1);
    return line;
  }

  std::string_view Rest() { return Bytes(rest_.size()); }

 private:
  std::string_view rest_;
};

// A character of a wide text out of a byte: ASCII and Latin 1, but for a few that are letters, digits and
// blanks of other kinds, and the halves of a surrogate pair.
inline wchar_t WideCharacter(std::uint8_t byte) {
  constexpr wchar_t kOthers[] = {0x20AC, 0x0152, 0x4E2D, 0x0660, 0x0130, 0x0131, 0xFEFF, 0xFFFD,
                                 0x03BC, 0x2028, 0x202F, 0xFF11, 0x3000, 0x00A0, 0xD83D, 0xDE00};
  return byte < 0xC0 || byte >= 0xD0 ? static_cast<wchar_t>(byte) : kOthers[byte - 0xC0];
}

inline std::wstring WideText(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text += WideCharacter(static_cast<std::uint8_t>(byte));
  return text;
}

}  // namespace kesp
