// What a description of a network says: instruments, each at an address of its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/personality.h"

namespace kesp::simulator {

struct TcpAddress {
  std::string host = "127.0.0.1";  // an IPv4 address, which has one text only
  std::uint16_t port = 0;

  bool operator==(const TcpAddress& other) const = default;
};

// One that says nothing about discovery has no answer to it.
struct NetworkDevice {
  TcpAddress address;
  Personality personality;
};

struct NetworkDescription {
  std::vector<NetworkDevice> devices;
};

}  // namespace kesp::simulator
