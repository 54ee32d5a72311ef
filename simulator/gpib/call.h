// One call of the driver on its way in, for the plan of failures and the record.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kesp::simulator::gpib {

// The calls that go to the bus.
enum class CallName { kDevice, kClear, kEndOfString, kWrite, kRead, kOnline, kSerialPoll };

inline constexpr std::array<std::string_view, 7> kCallNames{"ibdev", "ibclr", "ibeos", "ibwrt",
                                                            "ibrd",  "ibonl", "ibrsp"};

// The name under which the driver exports the call, and back; nothing for another text.
std::string_view NameOf(CallName call);
std::optional<CallName> CallNamed(std::string_view name);

struct Call {
  CallName name;
  // What stands between the parentheses, but for buffers.
  std::array<std::int32_t, 6> arguments{};
  // The bytes to be written by ibwrt, or the buffer of ibrd or ibrsp as it is on entry.
  std::string_view bytes;
};

}  // namespace kesp::simulator::gpib
