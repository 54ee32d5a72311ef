// A hand at the dialogs of a thread, which never waits for one that does not come.
#pragma once

#include <windows.h>

#include <atomic>
#include <thread>
#include <vector>

namespace kesp::faults {

// What the hand does with the dialog that stands on top: a click on the control of that number, or, with a
// page, a turn of the control's tabs to it.
struct HandStep {
  int control = 0;
  int page = -1;
};

// Works on a thread of its own until it is destroyed. When its steps are done it closes what is left.
class DialogHand {
 public:
  DialogHand(std::vector<HandStep> steps);
  ~DialogHand();
  DialogHand(const DialogHand&) = delete;
  DialogHand& operator=(const DialogHand&) = delete;

 private:
  void Run();

  std::vector<HandStep> steps_;
  DWORD watched_thread_;
  std::atomic<bool> is_over_ = false;
  std::thread thread_;
};

}  // namespace kesp::faults
