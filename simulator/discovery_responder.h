// Answers discovery datagrams as the personalities of the instruments say.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/ip/udp.hpp>
#include <optional>
#include <string_view>
#include <vector>

#include "simulator/address_range.h"
#include "simulator/datagram_port.h"
#include "simulator/event_log.h"
#include "simulator/instrument.h"

namespace kesp::simulator {

// The four bytes by which a client asks who is there. Nothing else is answered.
inline constexpr std::string_view kDiscoveryRequest("\x00\x01\x00\xF6", 4);

// From where and how fast the answers go.
struct AnswerManner {
  // One instrument for each of these addresses of the machine; nothing: one, at the address that the system
  // chooses for the client.
  std::optional<AddressRange> from;
  // At most so many datagrams of an answer in a second; 0: no limit.
  unsigned rate = 0;
};

// An instrument that answers. It must live as long as the responder.
struct Answerer {
  Instrument& instrument;
  AnswerManner manner;
};

// Has each instrument answer each request in its own time, so that a late answer does not hold up the others
// or the next request, and logs requests and answers. All that is handed in must outlive it, and it must
// outlive the run of the io_context.
class DiscoveryResponder {
 public:
  DiscoveryResponder(DatagramPort& port, std::vector<Answerer> answerers, EventLog& log);

  // Never ends by itself.
  asio::awaitable<void> Run();

 private:
  using Endpoint = asio::ip::udp::endpoint;

  asio::awaitable<void> Answer(const Answerer& answerer, Endpoint to);

  DatagramPort& port_;
  const std::vector<Answerer> answerers_;
  EventLog& log_;
};

}  // namespace kesp::simulator
