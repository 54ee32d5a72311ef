// A TCP connection as the carrier of a talk.
#pragma once

#include <asio/ip/tcp.hpp>
#include <string>

#include "simulator/stream_carrier.h"

namespace kesp::simulator {

// Owns the connection. Small pieces go out as they are (no Nagle delay).
class TcpCarrier : public StreamCarrier<asio::ip::tcp::socket> {
 public:
  explicit TcpCarrier(asio::ip::tcp::socket socket);

  std::string Opening() const override;
  void End(Ending ending) override;

  // Ends whatever goes on on the connection, with an error.
  void Abandon();

 private:
  void DropInput();

  const std::string peer_;
};

}  // namespace kesp::simulator
