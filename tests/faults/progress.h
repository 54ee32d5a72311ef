// What a child process of the sweep tells its parent: the case it is at, and what came of the cases so far.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::faults {

// Lives in memory that both see, so that it outlasts a child that crashes. Figures add up over the children.
struct Progress {
  // The case that runs now: function 0 and no call before the first one.
  char function[64];
  LONG index;
  LONG nth;
  LONG way;
  // Changes with each case.
  LONG beat;
  // Whether the child came to its end.
  LONG is_done;

  // How often the scenario calls each function, counted by the first child of a cold one.
  LONG calls[256];

  // Calls of functions that can fail in one run of the scenario, and how many of them failed in at least one
  // way.
  LONG calls_seen;
  LONG calls_tried;
  // The last of those, and a bit for each replayed case that was tried.
  LONG tried_index;
  LONG tried_nth;
  LONG replayed;

  LONG faults;
  LONG allocations;
  LONG leaks;
  LONG idle_objects;
  LONG wrong_results;
  LONG excused_leaks;
  LONG slowest_ms;
  char slowest[96];

  // The case that runs now did happen.
  void CountFault(const char* scenario);
};

// The memory of that name, made by the parent and opened by the child.
class SharedProgress {
 public:
  explicit SharedProgress(const std::wstring& name);
  ~SharedProgress();
  SharedProgress(const SharedProgress&) = delete;
  SharedProgress& operator=(const SharedProgress&) = delete;

  Progress& operator*() const { return *progress_; }
  Progress* operator->() const { return progress_; }

 private:
  HANDLE mapping_;
  Progress* progress_;
};

}  // namespace kesp::faults
