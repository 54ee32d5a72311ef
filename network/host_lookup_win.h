// The look-up of a host's address in the background.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace kesp {

// Look-ups whose results come as window messages. Look-ups that nobody waits for any more are cancelled;
// since a system may finish a cancelled one all the same, and write its result, each keeps its memory until
// its message has come. The memory of those that are under way when the object goes is given up for the same
// reason (1 KB each).
class HostLookup {
 public:
  HostLookup() = default;
  ~HostLookup();
  HostLookup(const HostLookup&) = delete;
  HostLookup& operator=(const HostLookup&) = delete;

  // Starts looking up the IPv4 address of a name; the message goes to the window when it is done. Returns 0,
  // or the Winsock error number when it could not be started.
  int Start(HWND window, UINT message, const std::string& name);

  // Gives up the look-up that was started last, if it is still under way.
  void Cancel();

  struct Result {
    int error = 0;              // Winsock error number
    std::uint32_t address = 0;  // in network byte order
  };

  // What a look-up's message says. To be called for each such message, also when nobody waits for it.
  Result Finish(WPARAM wparam, LPARAM lparam);

 private:
  struct Buffer {
    alignas(hostent) char bytes[MAXGETHOSTSTRUCT];
  };

  HANDLE current_ = nullptr;
  std::map<HANDLE, std::unique_ptr<Buffer>> under_way_;
};

}  // namespace kesp
