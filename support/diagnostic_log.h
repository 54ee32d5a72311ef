// The diagnostic log or the trace of one object: its switch, its file, and lines that are made only when they
// are wanted.
#pragma once

#include <string>
#include <utility>

#include "support/clock.h"
#include "support/files.h"
#include "support/log.h"

namespace kesp {

// Whether the file of an earlier day is put aside (LogWriter::WriteWithDailyRollover).
enum class Rollover { kNever, kDaily };

// Off at first. Writing never fails: a line that cannot be written, or for which there is no memory, is lost.
class DiagnosticLog {
 public:
  DiagnosticLog(Clock& clock, Files& files, std::wstring filename, Rollover rollover = Rollover::kNever)
      : writer_(clock, files), rollover_(rollover), filename_(std::move(filename)) {}

  bool IsOn() const { return is_on_; }
  void Turn(bool on) { is_on_ = on; }

  // A bare name lies in the process's current directory. Not checked.
  const std::wstring& Filename() const { return filename_; }
  void SetFilename(const std::wstring& value) { filename_ = value; }

  // Writes the text that make_text returns; it is not called while the log is off.
  template <typename MakeText>
  void Write(const MakeText& make_text) noexcept {
    if (!is_on_) return;
    try {
      const std::wstring text = make_text();
      if (rollover_ == Rollover::kDaily) return writer_.WriteWithDailyRollover(filename_, text);
      writer_.Write(filename_, text);
    } catch (...) {
    }
  }
  void Write(const wchar_t* text) noexcept {
    Write([text] { return std::wstring(text); });
  }

 private:
  LogWriter writer_;
  Rollover rollover_;
  bool is_on_ = false;
  std::wstring filename_;
};

}  // namespace kesp
