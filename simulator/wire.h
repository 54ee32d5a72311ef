// Carries bytes between one TCP client at a time and a serial line that is there while the client is.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <cstdint>
#include <string>

#include "simulator/options.h"

namespace kesp::simulator {

// Runs on the thread that runs the io_context; must outlive that run.
class Wire {
 public:
  // Listens; port 0 picks a free one as an instrument does. link: where each line is linked. Throws
  // std::system_error when it cannot listen there.
  Wire(asio::io_context& io, std::string link, const std::string& address, std::uint16_t port);

  asio::ip::tcp::endpoint endpoint() const { return acceptor_.local_endpoint(); }

  // Serves one client after the other, for ever: makes a new line for each, tells it "ready\n", carries bytes
  // both ways, and pulls the line when the client has left. Neither side is read faster than the other one
  // takes, so that a client that does not read lets the line fill up. A further client waits for its turn.
  // Throws std::system_error when no line can be made.
  asio::awaitable<void> Run();

 private:
  asio::awaitable<void> Serve(asio::ip::tcp::socket socket);

  asio::ip::tcp::acceptor acceptor_;
  const std::string link_;
};

// What "kesp-sim wire" does: prints "listening on ADDRESS:PORT" and serves until it is asked to end. Throws
// CannotError. On Windows there is no such thing.
void ServeWire(const Options& options);

}  // namespace kesp::simulator
