// A network adapter that is up.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kesp::console {

struct NetworkAdapter {
  std::uint32_t index = 0;
  std::string name;    // as the user sees it: "Ethernet 2"
  std::string device;  // "Intel(R) I211 Gigabit Network Connection"
  std::uint32_t metric = 0;
  std::vector<std::string> addresses;  // of IPv4, "192.168.0.10"
  bool takes_broadcast = false;        // what is sent to 255.255.255.255 leaves here
  std::string profile;                 // "private", "public", "domain"; empty: not known
  std::optional<bool> firewall;        // whether Windows' own is on for that profile
  bool replies_blocked = false;        // the firewall keeps out the replies to a broadcast
  bool by_policy = false;              // so an administrator's policy says
};

}  // namespace kesp::console
