// Writes that the driver of a serial port has not finished.
#pragma once

#include <windows.h>

#include <list>
#include <memory>
#include <string>
#include <string_view>

namespace kesp {

// Keeps the bytes of each write where they are until the driver is done with them.
class PendingWrites {
 public:
  PendingWrites() = default;
  // What the driver does not give back even after Abandon is leaked, rather than freed under its hands.
  ~PendingWrites();
  PendingWrites(const PendingWrites&) = delete;
  PendingWrites& operator=(const PendingWrites&) = delete;

  // Hands the bytes to the driver and returns 0, or the system's error.
  DWORD Start(HANDLE port, std::string_view bytes);

  // How many bytes belong to writes that are not finished; 0 also when the last of them failed, which
  // TakeError tells.
  std::size_t Count();

  // The error of a write that failed since the last call, or 0.
  DWORD TakeError();

  // Calls back every write that is not finished and stops counting it.
  void Abandon(HANDLE port);

  // After Abandon: waits, for a fifth of a second at the most, until the driver has given the writes back.
  // While it has one, the port stays taken even when its handle is closed.
  void AwaitAbandoned();

 private:
  struct Write {
    OVERLAPPED overlapped{};
    std::string bytes;
    bool abandoned = false;
  };

  // Forgets the writes that are finished.
  void Collect();

  std::unique_ptr<std::list<Write>> writes_ = std::make_unique<std::list<Write>>();
  DWORD error_ = 0;
};

}  // namespace kesp
