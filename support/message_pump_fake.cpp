// The message pump that counts.
#include "support/message_pump_fake.h"

#include <utility>

namespace kesp {

MessagePumpFake::MessagePumpFake() = default;

MessagePumpFake::~MessagePumpFake() = default;

void MessagePumpFake::PumpOnce() {
  ++count_;
  // A copy: the action may set another one.
  if (const std::function<void()> action = on_pump_) action();
}

void MessagePumpFake::OnPump(std::function<void()> action) {
  on_pump_ = std::move(action);
}

}  // namespace kesp
