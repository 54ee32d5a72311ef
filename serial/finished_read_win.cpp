// An overlapped read that is over at once, or soon, or called back.
#include "serial/finished_read_win.h"

#include <memory>
#include <utility>

#include "serial/overlapped_result_win.h"

namespace kesp {

namespace {

// How long the driver is waited for to give a read back that was called back.
constexpr DWORD kGivingBackMs = 1000;

struct Read {
  OVERLAPPED overlapped{};
  std::string bytes;
};

bool IsFinishedWithin(DWORD patience_ms, const Read& read) {
  const DWORD start = GetTickCount();
  for (;;) {
    // The clock first: this thread may be held, and the read finish meanwhile.
    const bool late = GetTickCount() - start > patience_ms;
    if (HasOverlappedIoCompleted(&read.overlapped)) return true;
    if (late) return false;
    Sleep(0);
  }
}

}  // namespace

std::optional<std::string> FinishedRead(HANDLE port, DWORD count, DWORD patience_ms) {
  auto read = std::make_unique<Read>();
  read->bytes.resize(count);
  const BOOL done = ReadFile(port, read->bytes.data(), count, nullptr, &read->overlapped);
  if (!done && GetLastError() != ERROR_IO_PENDING) return std::nullopt;
  if (!done && !IsFinishedWithin(patience_ms, *read)) {
    CancelIoEx(port, &read->overlapped);
    if (!IsFinishedWithin(kGivingBackMs, *read)) {
      // The memory belongs to the driver until it gives it back; one that does not, keeps it.
      static_cast<void>(read.release());
      return std::nullopt;
    }
  }
  // A read that was called back in time counts as failed, whatever its count says: Windows copies no byte of
  // it.
  if (!Succeeded(read->overlapped)) return std::nullopt;
  read->bytes.resize(read->overlapped.InternalHigh);
  return std::move(read->bytes);
}

}  // namespace kesp
