// Thread-local data of the driver binding, and the notice of a thread's end.
#include "gpib/gpib_threads_win.h"

#include <windows.h>

#include <memory>
#include <new>

namespace kesp {

namespace {

// What a fiber's slot holds: the data of the thread that the fiber ran on.
struct Notice {
  DWORD thread_id;
  GpibThread thread;
};

// A thread may run several fibers; its registration with the driver is one.
thread_local GpibThread* of_this_thread = nullptr;

// Whether the process is ending. Found before the first thread has anything to give back: a look at a
// thread's end would wait for the loader, and the process could end there, in the middle of it.
BOOLEAN(NTAPI* shutdown_in_progress)() = nullptr;

void FindShutdownInProgress() {
  shutdown_in_progress = reinterpret_cast<decltype(shutdown_in_progress)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
}

// The other threads of a process that ends are gone by then, some of them perhaps from within the driver,
// which may wait for them for ever.
bool ProcessIsEnding() {
  return shutdown_in_progress != nullptr && shutdown_in_progress() != FALSE;
}

// Runs at the end of a thread or fiber. A fiber may have moved to another thread or be deleted by one: the
// driver can still write into the data then, so it stays.
void WINAPI OnFiberEnd(void* data) {
  auto* notice = static_cast<Notice*>(data);
  if (notice == nullptr || notice->thread_id != GetCurrentThreadId() || ProcessIsEnding()) return;
  of_this_thread = nullptr;
  delete notice;
}

DWORD NoticeSlot() {
  static const DWORD slot = [] {
    FindShutdownInProgress();
    // The function stays where it is: the DLL is not unloaded once there was an object (server/module.h).
    const DWORD made = FlsAlloc(&OnFiberEnd);
    if (made == FLS_OUT_OF_INDEXES) throw std::bad_alloc();
    return made;
  }();
  return slot;
}

}  // namespace

GpibThread& GpibThreadsWin::Current() {
  if (of_this_thread != nullptr) return *of_this_thread;
  auto notice = std::make_unique<Notice>();
  notice->thread_id = GetCurrentThreadId();
  if (FlsSetValue(NoticeSlot(), notice.get()) == FALSE) throw std::bad_alloc();
  of_this_thread = &notice.release()->thread;
  return *of_this_thread;
}

}  // namespace kesp
