// Fiber-local storage of the driver binding's data.
#include "gpib/gpib_threads_win.h"

#include <windows.h>

#include <memory>
#include <new>

namespace kesp {

namespace {

struct Slot {
  DWORD thread_id;
  GpibThread thread;
};

// Runs at the end of a thread, on it; and when the slot is given up, on one thread for all.
void WINAPI OnThreadEnd(void* data) {
  auto* slot = static_cast<Slot*>(data);
  if (slot != nullptr && slot->thread_id == GetCurrentThreadId()) delete slot;
}

}  // namespace

GpibThreadsWin::GpibThreadsWin() : slot_(FlsAlloc(&OnThreadEnd)) {}

GpibThread& GpibThreadsWin::Current() {
  if (slot_ == FLS_OUT_OF_INDEXES) throw std::bad_alloc();
  if (auto* known = static_cast<Slot*>(FlsGetValue(slot_)); known != nullptr) return known->thread;
  auto made = std::make_unique<Slot>();
  made->thread_id = GetCurrentThreadId();
  if (FlsSetValue(slot_, made.get()) == FALSE) throw std::bad_alloc();
  return made.release()->thread;
}

void GpibThreadsWin::Release() {
  if (slot_ != FLS_OUT_OF_INDEXES) FlsFree(slot_);
  slot_ = FLS_OUT_OF_INDEXES;
}

}  // namespace kesp
