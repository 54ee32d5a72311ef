// Keeps data bits and parity in the kernel's own settings, by which newer versions of Wine set any bit rate.
#include "raw_settings.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>

#include "simulator/character_frame.h"

namespace kesp::serial_line {

static_assert(kSizeMask == CSIZE && kEightBits == CS8 && kParityFlag == PARENB);

bool IsAboutSettings(unsigned long request) {
  return request == TCGETS2 || request == TCSETS2 || request == TCSETSW2 || request == TCSETSF2;
}

int ControlSettings(ControlFunction* next, int descriptor, unsigned long request, void* argument) {
  auto* const settings = static_cast<termios2*>(argument);
  if (request != TCGETS2) {
    termios2 kept = WithKeptFrame(*settings);
    return next(descriptor, request, &kept);
  }
  const int result = next(descriptor, request, settings);
  if (result == 0) settings->c_cflag = AskedFlags(*settings);
  return result;
}

}  // namespace kesp::serial_line
