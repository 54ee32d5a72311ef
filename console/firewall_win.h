// The firewall of Windows.
#pragma once

#include <optional>
#include <string>

namespace kesp::console {

struct FirewallProfile {
  std::optional<bool> on;        // nothing: not known
  bool replies_blocked = false;  // replies to what was sent to everybody are kept out
  bool by_policy = false;        // an administrator's policy says so
};

// profile: "private", "public", "domain"; nothing is known for another.
FirewallProfile FirewallFor(const std::string& profile);

}  // namespace kesp::console
