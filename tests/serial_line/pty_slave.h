// Tells the slave of a pseudo-terminal, which stands for a serial line in tests, from any other file.
#pragma once

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

namespace kesp::serial_line {

// The number N of the slave /dev/pts/N that the descriptor is open on; -1 for anything else. May set errno.
inline int PtySlaveNumber(int descriptor) {
  // The majors that Linux gives to the slaves of /dev/pts.
  constexpr unsigned kFirstMajor = 136;
  constexpr unsigned kLastMajor = 143;
  constexpr unsigned kMinorsOfAMajor = 1U << 20U;
  struct stat64 status {};
  if (fstat64(descriptor, &status) != 0 || !S_ISCHR(status.st_mode)) return -1;
  const unsigned major_number = major(status.st_rdev);
  if (major_number < kFirstMajor || major_number > kLastMajor) return -1;
  return static_cast<int>((major_number - kFirstMajor) * kMinorsOfAMajor + minor(status.st_rdev));
}

// Whether the descriptor is open on such a slave. Leaves errno alone.
inline bool IsPtySlave(int descriptor) {
  const int previous_error = errno;
  const bool is_slave = PtySlaveNumber(descriptor) >= 0;
  errno = previous_error;
  return is_slave;
}

}  // namespace kesp::serial_line
