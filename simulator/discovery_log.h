// The lines of the log about the datagrams of one answer to discovery.
#pragma once

#include <asio/ip/address_v4.hpp>
#include <asio/ip/udp.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <system_error>

#include "simulator/address_range.h"
#include "simulator/event_log.h"

namespace kesp::simulator {

// A line for each datagram of a few. Of many, only the first failure and, when all have been sent or not, a
// summary.
class DiscoveryLog {
 public:
  // count datagrams will go to this client, from these addresses or from that of the system's choice. The log
  // must outlive it.
  DiscoveryLog(EventLog& log, const asio::ip::udp::endpoint& to, const std::optional<AddressRange>& from,
               std::size_t count);

  void Sent(const std::optional<asio::ip::address_v4>& from, std::size_t bytes);
  void Failed(const std::optional<asio::ip::address_v4>& from, const std::error_code& error);
  // To be called once, after the last datagram.
  void Finish();

 private:
  EventLog& log_;
  const std::string to_;
  const std::string range_;
  const bool each_;
  std::size_t sent_ = 0;
  std::size_t bytes_ = 0;
  std::size_t failed_ = 0;
};

// "10.88.0.1:49152".
std::string TextOf(const asio::ip::udp::endpoint& endpoint);

}  // namespace kesp::simulator
