// Listens for clients over TCP and gives each a talk with the instrument.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "simulator/event_log.h"
#include "simulator/instrument.h"
#include "simulator/tcp_carrier.h"

namespace kesp::simulator {

// Where a free port is picked. The library's Port property is a signed 16-bit number, which the ports that
// the system would choose by itself do not fit into.
inline constexpr std::uint16_t kFirstPickedPort = 20000;
inline constexpr std::uint16_t kLastPickedPort = 32000;

// Opens a listening port. Port 0 stands for a free one between kFirstPickedPort and kLastPickedPort. Throws
// std::system_error when the address or port cannot be had.
asio::ip::tcp::acceptor Listen(asio::io_context& io, const std::string& address, std::uint16_t port);

enum class Clients { kMany, kOne };

// Serves clients at the same time, on the thread that runs the io_context. All that is handed in must outlive
// it, and it must outlive the run of the io_context.
class TcpServer {
 public:
  TcpServer(asio::ip::tcp::acceptor acceptor, std::shared_ptr<Instrument> instrument, EventLog& log);

  asio::ip::tcp::endpoint endpoint() const { return acceptor_.local_endpoint(); }

  // kMany: never ends by itself. kOne: takes one client, refuses further ones, and ends with its
  // talk.
  asio::awaitable<void> Run(Clients clients);

  // To be called before the io_context is stopped: on Windows a send that a client does not read would keep
  // it.
  void AbandonClients();

 private:
  asio::awaitable<asio::ip::tcp::socket> Accept();
  asio::awaitable<void> Serve(asio::ip::tcp::socket socket, unsigned number);

  asio::ip::tcp::acceptor acceptor_;
  const std::shared_ptr<Instrument> instrument_;
  EventLog& log_;
  std::set<TcpCarrier*> carriers_;
};

}  // namespace kesp::simulator
