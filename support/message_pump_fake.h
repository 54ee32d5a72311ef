// A message pump that counts, and runs what the test would have happen meanwhile.
#pragma once

#include <functional>
#include <utility>

#include "support/message_pump.h"

namespace kesp {

class MessagePumpFake final : public MessagePump {
 public:
  void PumpOnce() override {
    ++count_;
    // A copy: the action may set another one.
    if (const std::function<void()> action = on_pump_) action();
  }

  // Runs at every pumping from now on; it may throw, pump again and call OnPump.
  void OnPump(std::function<void()> action) { on_pump_ = std::move(action); }

  // How often the pump was called.
  int count() const { return count_; }

 private:
  int count_ = 0;
  std::function<void()> on_pump_;
};

}  // namespace kesp
