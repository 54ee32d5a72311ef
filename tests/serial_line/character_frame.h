// Data bits and parity of a pseudo-terminal, of which Linux keeps 8 and none whatever is asked for.
//
// Both travel in a control character that Linux stores and does not use, so that either side of the terminal
// can see them, the one that serves the line included. Bit rate, stop bits and "odd" are kept by Linux
// itself.
#pragma once

#include <termios.h>

namespace kesp::serial_line {

inline constexpr int kFrameCharacter = 17;
inline constexpr cc_t kIsSet = 0x40;
inline constexpr cc_t kHasParity = 0x04;
inline constexpr cc_t kSizeBits = 0x03;
inline constexpr unsigned kSizeShift = 4;
static_assert(CSIZE == kSizeBits << kSizeShift);

// The flags with the data bits and the parity that the line's user asked for.
inline tcflag_t AskedFlags(const termios& settings) {
  const cc_t frame = settings.c_cc[kFrameCharacter];
  if ((frame & kIsSet) == 0) return settings.c_cflag;
  const tcflag_t rest = settings.c_cflag & ~static_cast<tcflag_t>(CSIZE | PARENB);
  const tcflag_t size = static_cast<tcflag_t>(frame & kSizeBits) << kSizeShift;
  return rest | size | ((frame & kHasParity) != 0 ? PARENB : 0U);
}

// The settings in the way Linux keeps them.
inline termios WithKeptFrame(termios settings) {
  const bool has_parity = (settings.c_cflag & PARENB) != 0;
  const tcflag_t size = (settings.c_cflag & CSIZE) >> kSizeShift;
  settings.c_cc[kFrameCharacter] = static_cast<cc_t>(kIsSet | size | (has_parity ? kHasParity : 0U));
  settings.c_cflag = (settings.c_cflag & ~static_cast<tcflag_t>(CSIZE | PARENB)) | CS8;
  return settings;
}

}  // namespace kesp::serial_line
