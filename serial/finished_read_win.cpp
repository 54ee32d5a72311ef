// An overlapped read that is over at once, or given up.
#include "serial/finished_read_win.h"

#include <memory>
#include <utility>

#include "serial/overlapped_result_win.h"

namespace kesp {

namespace {

// How long a driver may take to finish a read, and again to give it back.
constexpr DWORD kPatienceMs = 100;

struct Read {
  OVERLAPPED overlapped{};
  std::string bytes;
};

bool IsFinishedInTime(const Read& read) {
  const DWORD start = GetTickCount();
  while (!HasOverlappedIoCompleted(&read.overlapped)) {
    if (GetTickCount() - start > kPatienceMs) return false;
    Sleep(0);
  }
  return true;
}

}  // namespace

std::optional<std::string> FinishedRead(HANDLE port, DWORD count) {
  auto read = std::make_unique<Read>();
  read->bytes.resize(count);
  const BOOL done = ReadFile(port, read->bytes.data(), count, nullptr, &read->overlapped);
  if (!done && GetLastError() != ERROR_IO_PENDING) return std::nullopt;
  if (!done && !IsFinishedInTime(*read)) {
    CancelIoEx(port, &read->overlapped);
    // The memory belongs to the driver until it gives it back; one that does not, keeps it.
    if (!IsFinishedInTime(*read)) static_cast<void>(read.release());
    return std::nullopt;
  }
  if (!Succeeded(read->overlapped)) return std::nullopt;
  read->bytes.resize(read->overlapped.InternalHigh);
  return std::move(read->bytes);
}

}  // namespace kesp
