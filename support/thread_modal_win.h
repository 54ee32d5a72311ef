// The other windows of the thread, which wait while a dialog is open.
#pragma once

#include <windows.h>

#include <vector>

namespace kesp {

// Disables every visible window of this thread except one, for as long as it lives; those that were enabled
// before are enabled again. They go on painting themselves and running their timers.
class ThreadModal {
 public:
  // Throws std::bad_alloc when memory is out; nothing is disabled then.
  explicit ThreadModal(HWND dialog);
  ~ThreadModal();
  ThreadModal(const ThreadModal&) = delete;
  ThreadModal& operator=(const ThreadModal&) = delete;

 private:
  std::vector<HWND> disabled_;
};

}  // namespace kesp
