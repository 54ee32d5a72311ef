// A message pump that counts, and runs what the test would have happen meanwhile.
#pragma once

#include <functional>

#include "support/message_pump.h"

namespace kesp {

class MessagePumpFake final : public MessagePump {
 public:
  MessagePumpFake();
  ~MessagePumpFake() override;

  void PumpOnce() override;

  // Runs at every pumping from now on; it may throw, pump again and call OnPump.
  void OnPump(std::function<void()> action);

  // How often the pump was called.
  int count() const { return count_; }

 private:
  int count_ = 0;
  std::function<void()> on_pump_;
};

}  // namespace kesp
