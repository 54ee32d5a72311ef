// What the driver binding keeps for each thread.
#pragma once

#include <cstdint>

#include "gpib/gpib_entry_points.h"

namespace kesp {

// One thread's part of the binding. Its address does not change while the thread lives, because the driver
// writes into the cells.
struct GpibThread {
  // Written by the driver.
  std::int32_t status_cell = 0;
  std::int32_t error_cell = 0;
  std::int32_t count_cell = 0;
  std::int32_t long_count_cell = 0;

  // Set once the driver knows the cells; from then on `entry_points` is set, too.
  bool registered = false;
  // Set instead when a call has left the cells untouched: the driver may know others of this thread.
  bool in_doubt = false;
  const GpibEntryPoints* entry_points = nullptr;

  GpibThread() = default;
  GpibThread(const GpibThread&) = delete;
  GpibThread& operator=(const GpibThread&) = delete;

  // Tells the driver to forget the cells. Runs on the thread itself, at its end. Cells of the host program's
  // own, which the driver names by refusing ours, stay registered.
  ~GpibThread() {
    if (in_doubt) registered = Register() == kRegistered;
    if (registered) entry_points->UnregisterGpibGlobalsForThread();
  }

  static constexpr int kRegistered = 0;

  // Hands the cells to the driver of `entry_points`. Returns what RegisterGpibGlobalsForThread does.
  int Register() {
    return entry_points->RegisterGpibGlobalsForThread(&status_cell, &error_cell, &count_cell,
                                                      &long_count_cell);
  }
};

// Hands each thread its own part; every thread may use it at any time.
class GpibThreads {
 public:
  virtual ~GpibThreads() = default;

  // The calling thread's part, made when the thread asks for the first time and destroyed when the thread
  // ends.
  virtual GpibThread& Current() = 0;
};

}  // namespace kesp
