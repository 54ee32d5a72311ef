// The message-pump seam: what lets notifications and the client's own windows run during a wait.
#pragma once

namespace kesp {

class MessagePump {
 public:
  virtual ~MessagePump() = default;

  // Processes the window messages that are waiting on the calling thread, then returns; never blocks. It goes
  // no further than the first message that is younger, by the tick count, than the call, so a flood of
  // messages cannot hold the caller; the rest is left to the next call. Handlers of the client run inside and
  // may call into the library.
  virtual void PumpOnce() = 0;
};

}  // namespace kesp
