// The present settings of a terminal of Linux.

// Not <termios.h>, whose structure has the bit rate as one of a few codes.
#include <asm/termbits.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <system_error>

#include "simulator/character_frame.h"
#include "simulator/line_settings.h"

namespace kesp::simulator {
namespace {

unsigned DataBits(tcflag_t flags) {
  switch (flags & CSIZE) {
    case CS5:
      return 5;
    case CS6:
      return 6;
    case CS7:
      return 7;
    default:
      return 8;
  }
}

// By itself a pseudo-terminal drops the flag that turns parity on and keeps those that say which.
char Parity(tcflag_t flags) {
  const bool odd = (flags & PARODD) != 0;
  if ((flags & CMSPAR) != 0) return odd ? 'M' : 'S';
  if (odd) return 'O';
  return (flags & PARENB) != 0 ? 'E' : 'N';
}

}  // namespace

LineSettings SettingsOf(int descriptor) {
  termios2 raw{};
  if (::ioctl(descriptor, TCGETS2, &raw) != 0) throw std::system_error(errno, std::generic_category());
  LineSettings settings;
  const tcflag_t asked = serial_line::AskedFlags(raw);
  settings.baud = raw.c_ospeed;
  settings.parity = Parity(asked);
  settings.data_bits = DataBits(asked);
  settings.whole = serial_line::HasKeptFrame(raw);
  settings.stop_bits = (raw.c_cflag & CSTOPB) != 0 ? 2 : 1;
  return settings;
}

}  // namespace kesp::simulator
