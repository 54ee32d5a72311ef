// Host look-ups by the system's asynchronous database routines.
#include "network/host_lookup_win.h"

#include <cstring>
#include <utility>

namespace kesp {

namespace {

static_assert(LookupBuffer::kSize == MAXGETHOSTSTRUCT);

// Of all look-ups of the process. It has no destructor: the system may write at any time.
constinit LookupBuffers buffers;
SRWLOCK buffers_lock = SRWLOCK_INIT;

std::unique_ptr<LookupBuffer> TakeBuffer() {
  AcquireSRWLockExclusive(&buffers_lock);
  std::unique_ptr<LookupBuffer> buffer = buffers.Take();
  ReleaseSRWLockExclusive(&buffers_lock);
  return buffer;
}

void GiveUp(std::unique_ptr<LookupBuffer> buffer) {
  AcquireSRWLockExclusive(&buffers_lock);
  buffers.GiveUp(std::move(buffer));
  ReleaseSRWLockExclusive(&buffers_lock);
}

}  // namespace

int HostLookup::Start(HWND window, UINT message, const std::string& name) {
  Cancel();
  buffer_ = TakeBuffer();
  if (buffer_ == nullptr) return WSAENOBUFS;
  task_ = WSAAsyncGetHostByName(window, message, name.c_str(), buffer_->bytes,
                                static_cast<int>(sizeof buffer_->bytes));
  return task_ != nullptr ? 0 : WSAGetLastError();
}

// Whether the system has stopped it, or writes its result all the same, is not known.
void HostLookup::Cancel() {
  if (task_ == nullptr) return;
  WSACancelAsyncRequest(task_);
  task_ = nullptr;
  GiveUp(std::move(buffer_));
}

HostLookup::Result HostLookup::Finish(WPARAM wparam, LPARAM lparam) {
  if (task_ == nullptr || reinterpret_cast<HANDLE>(wparam) != task_) return {WSAHOST_NOT_FOUND, 0};
  task_ = nullptr;
  const std::unique_ptr<LookupBuffer> buffer = std::move(buffer_);
  if (const int error = WSAGETASYNCERROR(lparam)) return {error, 0};
  const auto* const host = reinterpret_cast<const hostent*>(buffer->bytes);
  if (host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr) return {WSANO_DATA, 0};
  Result result;
  std::memcpy(&result.address, host->h_addr_list[0], sizeof result.address);
  return result;
}

}  // namespace kesp
