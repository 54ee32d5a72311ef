// A console that a test types at and reads.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "console/console.h"

namespace kesp::console {

class ConsoleFake : public Console {
 public:
  void Write(std::string_view text) override;
  void WriteError(std::string_view text) override { error += text; }
  void ShowProgress(const std::string& line) override { progress.push_back(line); }
  std::optional<std::string> ReadLine(const std::string& prompt) override;
  bool Interrupted() const override;
  void SetOnInterrupt(OnInterrupt what) override { on_interrupt = what; }
  bool IsTypedAt() const override { return typed_at; }
  int Width() const override { return width; }

  // Ctrl-C is pressed at once, or when Interrupted has been asked that many times with false.
  void Interrupt() { interrupt_after_ = 0; }
  void InterruptAfter(int questions) { interrupt_after_ = questions; }

  std::string output;
  std::string error;
  std::vector<std::string> progress;  // each line that was shown, "" where it was taken away
  std::deque<std::string> typed;      // what ReadLine gives, and then nothing
  std::vector<std::string> prompts;
  std::function<void()> on_read;  // before each line: to press Ctrl-C, for example
  bool full = false;              // Write throws std::system_error
  int width = 0;
  bool typed_at = true;  // by a person
  OnInterrupt on_interrupt = OnInterrupt::kNote;

 private:
  mutable int interrupt_after_ = -1;  // negative: nobody presses it
};

}  // namespace kesp::console
