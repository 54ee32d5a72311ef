// Data bits and parity of a pseudo-terminal, of which Linux keeps 8 and none whatever is asked for.
//
// Both travel in a control character that Linux stores and does not use, so that either side of the terminal
// can see them, the one that serves the line included. Bit rate, stop bits and "odd" are kept by Linux
// itself. The functions take the structure of <termios.h> or the kernel's own.
#pragma once

namespace kesp::serial_line {

// Linux's CSIZE, CS8 and PARENB, without the header that declares one of the two structures.
inline constexpr unsigned kSizeMask = 0x30;
inline constexpr unsigned kEightBits = 0x30;
inline constexpr unsigned kParityFlag = 0x100;

inline constexpr int kFrameCharacter = 17;
inline constexpr unsigned kIsSet = 0x40;
inline constexpr unsigned kHasParity = 0x04;
inline constexpr unsigned kSizeBits = 0x03;
inline constexpr unsigned kSizeShift = 4;
static_assert(kSizeMask == kSizeBits << kSizeShift);

// Whether the line's user set data bits and parity through the preloaded library.
template <typename Settings>
bool HasKeptFrame(const Settings& settings) {
  return (settings.c_cc[kFrameCharacter] & kIsSet) != 0;
}

// The flags with the data bits and the parity that the line's user asked for.
template <typename Settings>
unsigned AskedFlags(const Settings& settings) {
  if (!HasKeptFrame(settings)) return settings.c_cflag;
  const unsigned frame = settings.c_cc[kFrameCharacter];
  const unsigned rest = settings.c_cflag & ~(kSizeMask | kParityFlag);
  return rest | (frame & kSizeBits) << kSizeShift | ((frame & kHasParity) != 0 ? kParityFlag : 0U);
}

// The settings in the way Linux keeps them.
template <typename Settings>
Settings WithKeptFrame(Settings settings) {
  const bool has_parity = (settings.c_cflag & kParityFlag) != 0;
  const unsigned size = (settings.c_cflag & kSizeMask) >> kSizeShift;
  settings.c_cc[kFrameCharacter] = static_cast<unsigned char>(kIsSet | size | (has_parity ? kHasParity : 0U));
  settings.c_cflag = (settings.c_cflag & ~(kSizeMask | kParityFlag)) | kEightBits;
  return settings;
}

}  // namespace kesp::serial_line
