// A hand at the dialogs of a thread, which never waits for one that does not come.
#pragma once

#include <windows.h>

#include <atomic>
#include <thread>
#include <vector>

namespace kesp::faults {

// What the hand does with the dialog that stands on top: a click on the control of that number, or, with a
// page, a turn of the control's tabs to it. It waits for a dialog in which the control `shown`, if one is
// given, holds a text.
struct HandStep {
  int control = 0;
  int page = -1;
  int shown = 0;
};

// Works on a thread of its own until it is finished. When its steps are done it closes what is left.
class DialogHand {
 public:
  DialogHand(std::vector<HandStep> steps);
  ~DialogHand() { Finish(); }
  DialogHand(const DialogHand&) = delete;
  DialogHand& operator=(const DialogHand&) = delete;

  // Ends the work. Whether every step was done.
  bool Finish();

 private:
  void Run();

  std::vector<HandStep> steps_;
  bool all_done_ = true;
  DWORD watched_thread_;
  std::atomic<bool> is_over_ = false;
  std::thread thread_;
};

}  // namespace kesp::faults
