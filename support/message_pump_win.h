// The message queue of the calling thread.
#pragma once

#include "support/message_pump.h"

namespace kesp {

class MessagePumpWin final : public MessagePump {
 public:
  // A request to end the program (WM_QUIT) is put back for the client's own message loop.
  void PumpOnce() override;
};

}  // namespace kesp
