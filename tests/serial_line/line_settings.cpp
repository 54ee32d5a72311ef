// Stands in front of tcgetattr and tcsetattr: a pseudo-terminal keeps the data bits and the parity it is
// given.
#include <termios.h>

#include "next_function.h"
#include "pty_slave.h"
#include "simulator/character_frame.h"

namespace {

using kesp::serial_line::AskedFlags;
using kesp::serial_line::IsPtySlave;
using kesp::serial_line::NextFunction;
using kesp::serial_line::WithKeptFrame;

using kesp::serial_line::kEightBits;
using kesp::serial_line::kParityFlag;
using kesp::serial_line::kSizeMask;

static_assert(kSizeMask == CSIZE && kEightBits == CS8 && kParityFlag == PARENB);

}  // namespace

extern "C" __attribute__((visibility("default"))) int tcgetattr(int descriptor, termios* settings) noexcept {
  static constinit NextFunction<int(int, termios*)> next("tcgetattr");
  const int result = next.Get()(descriptor, settings);
  if (result == 0 && IsPtySlave(descriptor)) settings->c_cflag = AskedFlags(*settings);
  return result;
}

extern "C" __attribute__((visibility("default"))) int tcsetattr(int descriptor, int when,
                                                                const termios* settings) noexcept {
  static constinit NextFunction<int(int, int, const termios*)> next("tcsetattr");
  if (!IsPtySlave(descriptor)) return next.Get()(descriptor, when, settings);
  const termios kept = WithKeptFrame(*settings);
  return next.Get()(descriptor, when, &kept);
}
