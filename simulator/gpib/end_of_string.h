// The end-of-string setting of a device descriptor: a byte, and what it ends.
#pragma once

#include <cstdint>

namespace kesp::simulator::gpib {

class EndOfString {
 public:
  // The byte and its flags in one number, as ibdev and ibeos take it.
  static constexpr std::int32_t kEndsReads = 0x0400;   // REOS
  static constexpr std::int32_t kEndsWrites = 0x0800;  // XEOS
  static constexpr std::int32_t kEightBits = 0x1000;   // BIN

  EndOfString() = default;
  // Bits that mean nothing are ignored; see IsValid.
  explicit EndOfString(std::int32_t flags) : flags_(flags) {}

  static bool IsValid(std::int32_t flags) {
    return (flags & ~(0xFF | kEndsReads | kEndsWrites | kEightBits)) == 0;
  }

  // Whether a read ends with this byte.
  bool EndsReadAt(char byte) const { return Has(kEndsReads) && IsMatch(byte); }
  // Whether END goes with this byte when it is written.
  bool EndsWriteAt(char byte) const { return Has(kEndsWrites) && IsMatch(byte); }

 private:
  bool Has(std::int32_t flag) const { return (flags_ & flag) != 0; }
  bool IsMatch(char byte) const {
    const std::int32_t compared = Has(kEightBits) ? 0xFF : 0x7F;
    return ((static_cast<unsigned char>(byte) ^ flags_) & compared) == 0;
  }

  std::int32_t flags_ = 0;
};

}  // namespace kesp::simulator::gpib
