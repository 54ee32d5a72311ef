// Ctrl-C, noted or obeyed.
#pragma once

#include <windows.h>

namespace kesp::console {

// The process has one at the most. The second Ctrl-C ends the program in every case.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool Happened() const;
  // Signaled when it has happened.
  HANDLE event() const;
  // Whether the first one ends the program, too, with kExitInterrupted.
  void SetEndsProgram(bool ends);
};

}  // namespace kesp::console
