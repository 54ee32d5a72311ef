// The console of the program, or what stands in its place: files and pipes.
#pragma once

#include "console/console.h"
#include "console/input_lines_win.h"
#include "console/interruption_win.h"
#include "console/output_stream_win.h"

namespace kesp::console {

class ConsoleWin : public Console {
 public:
  explicit ConsoleWin(Interruption& interruption) : interruption_(interruption) {}

  void Write(std::string_view text) override;
  void WriteError(std::string_view text) override;
  void ShowProgress(const std::string& line) override;
  std::optional<std::string> ReadLine(const std::string& prompt) override;
  bool Interrupted() const override { return interruption_.Happened(); }
  void SetOnInterrupt(OnInterrupt what) override { interruption_.SetEndsProgram(what == OnInterrupt::kEnd); }
  bool IsTypedAt() const override { return input_.IsConsole(); }
  int Width() const override { return output_.Width(); }

 private:
  Interruption& interruption_;
  InputLines input_;
  OutputStream output_{"standard output", STD_OUTPUT_HANDLE};
  OutputStream error_{"standard error", STD_ERROR_HANDLE};
  std::size_t shown_ = 0;  // columns of the line of progress
};

}  // namespace kesp::console
