// A TCP connection as the carrier of a talk.
#pragma once

#include <asio/ip/tcp.hpp>
#include <string>

#include "simulator/stream_carrier.h"

namespace kesp::simulator {

// What the log is told of a connection: from where the client came, or also to which address.
enum class Tells { kPeer, kBothEnds };

// Owns the connection. Small pieces go out as they are (no Nagle delay).
class TcpCarrier : public StreamCarrier<asio::ip::tcp::socket> {
 public:
  TcpCarrier(asio::ip::tcp::socket socket, Tells tells);

  std::string Opening() const override;
  void End(Ending ending) override;

  // Ends whatever goes on on the connection, with an error.
  void Abandon();

 private:
  void DropInput();

  const std::string ends_;
};

}  // namespace kesp::simulator
