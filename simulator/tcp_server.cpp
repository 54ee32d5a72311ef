// Listens for clients over TCP and gives each a talk with an instrument.
#include "simulator/tcp_server.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/ip/address.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <chrono>
#include <exception>
#include <random>
#include <sstream>
#include <utility>

#include "simulator/platform.h"
#include "simulator/played_device.h"
#include "simulator/talk.h"

namespace kesp::simulator {
namespace {

using asio::ip::tcp;

tcp::acceptor ListenOn(asio::io_context& io, const tcp::endpoint& endpoint, asio::error_code& error) {
  tcp::acceptor acceptor(io);
  acceptor.open(endpoint.protocol(), error);
  if (!error) PrepareToListen(acceptor, error);
  if (!error) acceptor.bind(endpoint, error);
  if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
  return acceptor;
}

}  // namespace

tcp::acceptor Listen(asio::io_context& io, const std::string& address, std::uint16_t port) {
  const asio::ip::address ip = asio::ip::make_address(address);
  asio::error_code error;
  if (port != 0) {
    tcp::acceptor acceptor = ListenOn(io, tcp::endpoint(ip, port), error);
    if (error) throw asio::system_error(error);
    return acceptor;
  }
  // From a random place, so that instruments started at the same time do not race for the same ports.
  constexpr unsigned kCount = kLastPickedPort - kFirstPickedPort + 1;
  const unsigned start = std::random_device{}() % kCount;
  for (unsigned i = 0; i < kCount; ++i) {
    const auto picked = static_cast<std::uint16_t>(kFirstPickedPort + (start + i) % kCount);
    tcp::acceptor acceptor = ListenOn(io, tcp::endpoint(ip, picked), error);
    if (!error) return acceptor;
    // Windows keeps some ranges of ports for itself, and denies them.
    if (error != asio::error::address_in_use && error != asio::error::access_denied) break;
  }
  throw asio::system_error(error);
}

TcpServer::TcpServer(std::vector<Door> doors, EventLog& log) : doors_(std::move(doors)), log_(log) {}

std::string TcpServer::Endpoints() const {
  std::ostringstream text;
  for (const Door& door : doors_)
    text << (&door == doors_.data() ? "" : ", ") << door.acceptor.local_endpoint();
  return text.str();
}

void TcpServer::Start(Clients clients, const std::function<void()>& end) {
  end_ = end;
  for (Door& door : doors_) {
    asio::co_spawn(door.acceptor.get_executor(), Watch(door, clients),
                   [this](const std::exception_ptr& failure) {
                     if (failure) end_();
                   });
  }
}

void TcpServer::AbandonClients() {
  for (TcpCarrier* carrier : carriers_) carrier->Abandon();
}

asio::awaitable<void> TcpServer::Watch(Door& door, Clients clients) {
  for (;;) {
    std::optional<tcp::socket> socket = co_await Accept(door);
    // Another door may have had a client at the same moment.
    if (!socket || (clients == Clients::kOne && clients_ > 0)) co_return;
    const unsigned number = ++clients_;
    if (clients == Clients::kOne) {
      for (Door& each : doors_) each.acceptor.close();
      co_await Serve(std::move(*socket), door.instrument, number);
      end_();
      co_return;
    }
    asio::co_spawn(door.acceptor.get_executor(), Serve(std::move(*socket), door.instrument, number),
                   asio::detached);
  }
}

asio::awaitable<std::optional<tcp::socket>> TcpServer::Accept(Door& door) {
  for (;;) {
    asio::error_code error;
    tcp::socket socket =
        co_await door.acceptor.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (!error) co_return socket;
    if (!door.acceptor.is_open()) co_return std::nullopt;
    // No file descriptors left, or a client that was gone again before it was accepted: neither is the end.
    log_.Line(0, "cannot accept a client: " + error.message());
    asio::steady_timer pause(door.acceptor.get_executor(), std::chrono::milliseconds(50));
    co_await pause.async_wait(asio::use_awaitable);
  }
}

asio::awaitable<void> TcpServer::Serve(tcp::socket socket, std::shared_ptr<Instrument> instrument,
                                       unsigned number) {
  TcpCarrier carrier(std::move(socket), doors_.size() > 1 ? Tells::kBothEnds : Tells::kPeer);
  PlayedDevice device(std::move(instrument), Place::kOwnLine);
  Talk talk(carrier, device, log_, number);
  carriers_.insert(&carrier);
  co_await talk.Run();
  carriers_.erase(&carrier);
}

}  // namespace kesp::simulator
