// The message-pump seam: what lets notifications and the client's own windows run during a wait.
#pragma once

namespace kesp {

class MessagePump {
 public:
  virtual ~MessagePump() = default;

  // Processes the window messages that are waiting on the calling thread, then returns; never blocks.
  // Messages that arrive while it works are left to the next call, so a flood of them cannot hold the caller.
  // Handlers of the client run inside and may call into the library.
  virtual void PumpOnce() = 0;
};

}  // namespace kesp
