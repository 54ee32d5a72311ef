// The look-up of a host's address in the background.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <cstdint>
#include <memory>
#include <string>

#include "network/lookup_buffers.h"

namespace kesp {

// One look-up at a time, whose result comes as a window message. One that nobody waits for any more is
// cancelled, and its buffer given up.
class HostLookup {
 public:
  HostLookup() = default;
  ~HostLookup() { Cancel(); }
  HostLookup(const HostLookup&) = delete;
  HostLookup& operator=(const HostLookup&) = delete;

  // Starts looking up the IPv4 address of a name, in place of the look-up under way; the message goes to the
  // window when it is done. Returns 0, or the Winsock error number when it could not be started.
  int Start(HWND window, UINT message, const std::string& name);

  // Gives up the look-up, if one is under way.
  void Cancel();

  struct Result {
    int error = 0;              // Winsock error number
    std::uint32_t address = 0;  // in network byte order
  };

  // What the message of the look-up under way says; that of any other says WSAHOST_NOT_FOUND.
  Result Finish(WPARAM wparam, LPARAM lparam);

 private:
  HANDLE task_ = nullptr;  // null when none is under way
  std::unique_ptr<LookupBuffer> buffer_;
};

}  // namespace kesp
