// Stands in front of open: whoever has opened the slave of a pseudo-terminal has it alone, as a COM port on
// Windows.
//
// The lock is one on the open file. It goes along when wineserver hands its descriptor to a client, falls
// when the last copy is closed, and can be held by a Linux program as well (flock).
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

#include "next_function.h"
#include "pty_slave.h"

namespace {

using kesp::serial_line::NextFunction;
using kesp::serial_line::PtySlaveNumber;
using OpenFunction = int(const char*, int, ...);

// The descriptor, or -1 with EACCES, which Wine reports as "access denied", when somebody else has that line.
int Claim(int descriptor) {
  if (descriptor < 0) return descriptor;
  const int previous_error = errno;
  const bool is_refused = PtySlaveNumber(descriptor) >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0;
  errno = previous_error;
  if (!is_refused) return descriptor;
  close(descriptor);
  errno = EACCES;
  return -1;
}

// The mode is there only when a file may be made.
mode_t ModeOf(int flags, va_list rest) {
  const bool has_mode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return has_mode ? va_arg(rest, mode_t) : 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
  static constinit NextFunction<OpenFunction> next("open");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = ModeOf(flags, rest);
  va_end(rest);
  return Claim(next.Get()(path, flags, mode));
}

extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
  static constinit NextFunction<OpenFunction> next("open64");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = ModeOf(flags, rest);
  va_end(rest);
  return Claim(next.Get()(path, flags, mode));
}
