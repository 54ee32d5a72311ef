// Stands in front of ioctl and close: a pseudo-terminal has modem lines, where Linux has none for it, and
// keeps the frame that is set by ioctl.
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "modem_lines.h"
#include "next_function.h"
#include "pty_slave.h"
#include "raw_settings.h"

namespace {

using kesp::serial_line::ControlFunction;
using kesp::serial_line::ControlSettings;
using kesp::serial_line::IsAboutSettings;
using kesp::serial_line::IsPtySlave;
using kesp::serial_line::ModemLines;
using kesp::serial_line::NextFunction;
using kesp::serial_line::PtySlaveNumber;

constinit ModemLines modem_lines;

bool IsAboutModemLines(unsigned long request) {
  switch (request) {
    case TIOCMGET:
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
    case TIOCGICOUNT:
      return true;
    default:
      return false;
  }
}

void Answer(int number, unsigned long request, void* argument) {
  constexpr int kAll = ~0;
  // Counters of events: none has happened.
  if (request == TIOCGICOUNT) memset(argument, 0, sizeof(serial_icounter_struct));
  if (request == TIOCGICOUNT) return;
  int* const lines = static_cast<int*>(argument);
  if (request == TIOCMGET) *lines = modem_lines.Get(number);
  if (request == TIOCMSET) modem_lines.Change(number, kAll, *lines);
  if (request == TIOCMBIS) modem_lines.Change(number, *lines, kAll);
  if (request == TIOCMBIC) modem_lines.Change(number, *lines, 0);
}

int Control(ControlFunction* next, int descriptor, unsigned long request, void* argument) {
  if (IsAboutSettings(request) && IsPtySlave(descriptor)) {
    return ControlSettings(next, descriptor, request, argument);
  }
  const int result = next(descriptor, request, argument);
  // A line whose other end has gone says EIO, and so it shall be.
  if (result == 0 || errno == EIO || !IsAboutModemLines(request)) return result;
  const int error = errno;
  const int number = PtySlaveNumber(descriptor);
  errno = error;
  if (number < 0) return result;
  Answer(number, request, argument);
  return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request,
                                                            ...) noexcept {
  static constinit NextFunction<ControlFunction> next("ioctl");
  va_list rest;
  va_start(rest, request);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  return Control(next.Get(), descriptor, request, argument);
}

#ifdef __i386__
// The name that 32-bit programs with 64-bit times call.
extern "C" __attribute__((visibility("default"))) int __ioctl_time64(int descriptor, unsigned long request,
                                                                     ...) noexcept {
  static constinit NextFunction<ControlFunction> next("__ioctl_time64");
  va_list rest;
  va_start(rest, request);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  return Control(next.Get(), descriptor, request, argument);
}
#endif

extern "C" __attribute__((visibility("default"))) int close(int descriptor) {
  static constinit NextFunction<int(int)> next("close");
  // Programs close much, and few ever touch a modem line.
  if (!modem_lines.IsEmpty()) {
    const int number = PtySlaveNumber(descriptor);
    if (number >= 0) modem_lines.Drop(number);
  }
  return next.Get()(descriptor);
}
