// Overlapped writes, looked after by polling: no event is needed, which would cost time at each write.
#include "serial/pending_writes_win.h"

#include <utility>

#include "serial/overlapped_result_win.h"

namespace kesp {

namespace {

// How long the driver is waited for to give writes back that were called back.
constexpr DWORD kPatienceMs = 200;

// Whether a finished write took every byte. One that a driver's own time-out cut short counts as a success
// there.
bool WentWell(const OVERLAPPED& write, std::size_t size) {
  return Succeeded(write) && write.InternalHigh == size;
}

}  // namespace

PendingWrites::~PendingWrites() {
  AwaitAbandoned();
  if (!writes_->empty()) static_cast<void>(writes_.release());
}

DWORD PendingWrites::Start(HANDLE port, std::string_view bytes) {
  Collect();
  writes_->emplace_back();
  Write& write = writes_->back();
  write.bytes = bytes;
  const BOOL done =
      WriteFile(port, write.bytes.data(), static_cast<DWORD>(write.bytes.size()), nullptr, &write.overlapped);
  DWORD error = done ? 0 : GetLastError();
  if (error == ERROR_IO_PENDING) return 0;
  if (done && !WentWell(write.overlapped, write.bytes.size())) error = ERROR_WRITE_FAULT;
  writes_->pop_back();
  return error;
}

std::size_t PendingWrites::Count() {
  Collect();
  std::size_t count = 0;
  for (const Write& write : *writes_) {
    if (!write.abandoned) count += write.bytes.size();
  }
  return count;
}

DWORD PendingWrites::TakeError() {
  return std::exchange(error_, 0);
}

void PendingWrites::Abandon(HANDLE port) {
  for (Write& write : *writes_) {
    write.abandoned = true;
    CancelIoEx(port, &write.overlapped);
  }
  Collect();
}

void PendingWrites::AwaitAbandoned() {
  const DWORD start = GetTickCount();
  for (Collect(); !writes_->empty() && GetTickCount() - start < kPatienceMs; Collect()) Sleep(1);
}

void PendingWrites::Collect() {
  for (auto write = writes_->begin(); write != writes_->end();) {
    if (!HasOverlappedIoCompleted(&write->overlapped)) {
      ++write;
      continue;
    }
    if (!write->abandoned && !WentWell(write->overlapped, write->bytes.size())) error_ = ERROR_WRITE_FAULT;
    write = writes_->erase(write);
  }
}

}  // namespace kesp
