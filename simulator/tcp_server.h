// Listens for clients over TCP and gives each a talk with an instrument.
#pragma once

#include <asio/awaitable.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

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

// A listening port, and the instrument to which it leads.
struct Door {
  asio::ip::tcp::acceptor acceptor;
  std::shared_ptr<Instrument> instrument;
};

// Serves clients at the same time, on the thread that runs the io_context. All that is handed in must outlive
// it, and it must outlive the run of the io_context.
class TcpServer {
 public:
  // At least one door. With more than one the log says to which of them a client came.
  TcpServer(std::vector<Door> doors, EventLog& log);

  // Where it listens, such as "127.0.0.1:10001, 127.0.0.2:10001".
  std::string Endpoints() const;

  // kMany: never ends by itself. kOne: takes one client, refuses further ones, and calls `end` after its
  // talk.
  void Start(Clients clients, const std::function<void()>& end);

  // To be called before the io_context is stopped: on Windows a send that a client does not read would keep
  // it.
  void AbandonClients();

 private:
  asio::awaitable<void> Watch(Door& door, Clients clients);
  // The next client; nothing when the door was closed.
  asio::awaitable<std::optional<asio::ip::tcp::socket>> Accept(Door& door);
  asio::awaitable<void> Serve(asio::ip::tcp::socket socket, std::shared_ptr<Instrument> instrument,
                              unsigned number);

  std::vector<Door> doors_;
  EventLog& log_;
  std::function<void()> end_;
  unsigned clients_ = 0;  // so many have come
  std::set<TcpCarrier*> carriers_;
};

}  // namespace kesp::simulator
