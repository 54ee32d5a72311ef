// Overlapped writes, looked after by polling: no event is needed, which would cost time at each write.
#include "serial/pending_writes_win.h"

#include <new>
#include <utility>

namespace kesp {

namespace {

// NTSTATUS values at or above this one are errors; below, successes and warnings.
constexpr DWORD kFirstError = 0xC0000000;

// How long the end of the port waits for the driver to give writes back that were called back.
constexpr DWORD kPatienceMs = 200;

}  // namespace

PendingWrites::~PendingWrites() {
  const DWORD start = GetTickCount();
  for (Collect(); !writes_.empty() && GetTickCount() - start < kPatienceMs; Collect()) SleepEx(1, TRUE);
  if (!writes_.empty()) new std::list<Write>(std::move(writes_));
}

DWORD PendingWrites::Start(HANDLE port, std::string_view bytes) {
  Collect();
  writes_.emplace_back();
  Write& write = writes_.back();
  write.bytes = bytes;
  const BOOL done =
      WriteFile(port, write.bytes.data(), static_cast<DWORD>(write.bytes.size()), nullptr, &write.overlapped);
  const DWORD error = done ? 0 : GetLastError();
  if (error == ERROR_IO_PENDING) return 0;
  writes_.pop_back();
  return error;
}

std::size_t PendingWrites::Count() {
  Collect();
  std::size_t count = 0;
  for (const Write& write : writes_) {
    if (!write.abandoned) count += write.bytes.size();
  }
  return count;
}

DWORD PendingWrites::TakeError() {
  return std::exchange(error_, 0);
}

void PendingWrites::Abandon(HANDLE port) {
  for (Write& write : writes_) {
    write.abandoned = true;
    CancelIoEx(port, &write.overlapped);
  }
  Collect();
}

void PendingWrites::Collect() {
  for (auto write = writes_.begin(); write != writes_.end();) {
    if (!HasOverlappedIoCompleted(&write->overlapped)) {
      ++write;
      continue;
    }
    if (!write->abandoned && static_cast<DWORD>(write->overlapped.Internal) >= kFirstError)
      error_ = ERROR_WRITE_FAULT;
    write = writes_.erase(write);
  }
}

}  // namespace kesp
