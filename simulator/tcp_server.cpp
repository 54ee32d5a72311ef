// Listens for clients over TCP and gives each a talk with the instrument.
#include "simulator/tcp_server.h"

#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/ip/address.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <chrono>
#include <random>
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

TcpServer::TcpServer(tcp::acceptor acceptor, std::shared_ptr<Instrument> instrument, EventLog& log)
    : acceptor_(std::move(acceptor)), instrument_(std::move(instrument)), log_(log) {}

asio::awaitable<void> TcpServer::Run(Clients clients) {
  if (clients == Clients::kOne) {
    tcp::socket only = co_await Accept();
    acceptor_.close();
    co_await Serve(std::move(only), 1);
    co_return;
  }
  for (unsigned number = 1;; ++number) {
    tcp::socket socket = co_await Accept();
    asio::co_spawn(acceptor_.get_executor(), Serve(std::move(socket), number), asio::detached);
  }
}

void TcpServer::AbandonClients() {
  for (TcpCarrier* carrier : carriers_) carrier->Abandon();
}

asio::awaitable<tcp::socket> TcpServer::Accept() {
  for (;;) {
    asio::error_code error;
    tcp::socket socket = co_await acceptor_.async_accept(asio::redirect_error(asio::use_awaitable, error));
    if (!error) co_return socket;
    // No file descriptors left, or a client that was gone again before it was accepted: neither is the end.
    log_.Line(0, "cannot accept a client: " + error.message());
    asio::steady_timer pause(acceptor_.get_executor(), std::chrono::milliseconds(50));
    co_await pause.async_wait(asio::use_awaitable);
  }
}

asio::awaitable<void> TcpServer::Serve(tcp::socket socket, unsigned number) {
  TcpCarrier carrier(std::move(socket));
  PlayedDevice device(instrument_, Place::kOwnLine);
  Talk talk(carrier, device, log_, number);
  carriers_.insert(&carrier);
  co_await talk.Run();
  carriers_.erase(&carrier);
}

}  // namespace kesp::simulator
