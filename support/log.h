// The diagnostic logs of the transports and the debug trace of the communication object.
#pragma once

#include <string>

#include "support/clock.h"
#include "support/files.h"

namespace kesp {

// A plain-text log to which lines are appended one by one. Each line: local date and time in the system's
// default form, TAB, the tick count in decimal, TAB, the message, CR LF; in the system's ANSI code page.
//
// The file is opened and closed for every line, so that the log is complete at any moment, also after a crash
// of the host program. Writing never fails towards the caller: a path that cannot be written loses the line.
class LogWriter {
 public:
  LogWriter(Clock& clock, Files& files) : clock_(clock), files_(files) {}

  // Appends one line. A bare file name lies in the process's current directory.
  void Write(const std::wstring& path, const std::wstring& message) noexcept;

  // As Write, but a file that was last changed on another day is first renamed, in its folder, to its name, a
  // blank and that day as YYYY-MM-DD. Where the rename fails the line goes into the old file.
  void WriteWithDailyRollover(const std::wstring& path, const std::wstring& message) noexcept;

 private:
  void RollOver(const std::wstring& path);

  Clock& clock_;
  Files& files_;
};

}  // namespace kesp
