// Carries bytes between one TCP client at a time and a serial line that is there while the client is.
#include "simulator/wire.h"

#include <poll.h>

#include <array>
#include <asio/buffer.hpp>
#include <asio/co_spawn.hpp>
#include <asio/experimental/awaitable_operators.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>
#include <chrono>
#include <exception>
#include <iostream>
#include <string_view>
#include <utility>

#include "simulator/making.h"
#include "simulator/platform.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/tcp_server.h"

namespace kesp::simulator {
namespace {

using asio::ip::tcp;

constexpr std::string_view kReady = "ready\n";
constexpr std::size_t kRoom = 4096;
// So little is kept by the system, too, that a client who stops reading soon shows. What the client sends is
// left the system's own room: with less, the last part of a window waits for an acknowledgement.
constexpr int kSendRoom = 8192;
constexpr std::chrono::milliseconds kLookEvery(200);

void Prepare(tcp::socket& socket) {
  asio::error_code ignored;  // a client that is gone already shows at the first operation
  socket.set_option(tcp::no_delay(true), ignored);
  socket.set_option(asio::socket_base::send_buffer_size(kSendRoom), ignored);
}

// Ends with the first fault or end of either side.
template <typename From, typename To>
asio::awaitable<void> Carry(From& from, To& to, std::size_t& carried) {
  std::array<char, kRoom> piece;
  asio::error_code error;
  for (;;) {
    auto redirected = asio::redirect_error(asio::use_awaitable, error);
    const std::size_t count = co_await from.async_read_some(asio::buffer(piece), redirected);
    if (error) co_return;
    co_await asio::async_write(to, asio::buffer(piece.data(), count), redirected);
    if (error) co_return;
    carried += count;
  }
}

bool HasLeft(tcp::socket& socket) {
  pollfd state{socket.native_handle(), POLLRDHUP, 0};
  return ::poll(&state, 1, 0) == 1 && state.revents != 0;
}

// Ends when the client has left and its last bytes do not move on, because the line is full: then nothing
// reads up to the end of the connection.
asio::awaitable<void> WatchForLeaving(tcp::socket& socket, const std::size_t& carried) {
  asio::steady_timer timer(socket.get_executor());
  std::size_t before = carried + 1;
  while (!HasLeft(socket) || carried != before) {
    before = carried;
    timer.expires_after(kLookEvery);
    co_await timer.async_wait(asio::use_awaitable);
  }
}

}  // namespace

Wire::Wire(asio::io_context& io, std::string link, const std::string& address, std::uint16_t port)
    : acceptor_(Listen(io, address, port)), link_(std::move(link)) {}

asio::awaitable<void> Wire::Run() {
  for (;;) {
    asio::error_code error;
    tcp::socket socket = co_await acceptor_.async_accept(asio::redirect_error(asio::use_awaitable, error));
    // A client that was gone again before it was accepted is not the end.
    if (!error) co_await Serve(std::move(socket));
  }
}

asio::awaitable<void> Wire::Serve(tcp::socket socket) {
  using asio::experimental::awaitable_operators::operator||;
  Prepare(socket);
  PseudoTerminal terminal = Making("serve " + link_, [this] { return PseudoTerminal(link_); });
  asio::posix::stream_descriptor master(socket.get_executor(), terminal.TakeMaster());
  asio::error_code error;
  co_await asio::async_write(socket, asio::buffer(kReady), asio::redirect_error(asio::use_awaitable, error));
  std::size_t to_line = 0;
  std::size_t to_client = 0;
  if (!error) {
    co_await (Carry(socket, master, to_line) || Carry(master, socket, to_client) ||
              WatchForLeaving(socket, to_line));
  }
  // The link first: who finds it must be able to open it.
  terminal.Pull();
}

void ServeWire(const Options& options) {
  asio::io_context io(1);
  asio::signal_set signals(io);
  AddEndingSignals(signals);
  signals.async_wait([&io](const asio::error_code& /*error*/, int /*signal*/) { io.stop(); });
  // A path that cannot be used is told now, and not to the first client.
  Making("serve " + options.serial, [&] { return PseudoTerminal(options.serial).device(); });
  Wire wire = Making("listen on " + options.bind + " port " + std::to_string(options.port),
                     [&] { return Wire(io, options.serial, options.bind, options.port); });
  // A failure of the service goes to the caller, from within the run.
  asio::co_spawn(io, wire.Run(), [](const std::exception_ptr& failure) {
    if (failure) std::rethrow_exception(failure);
  });
  std::cout << "listening on " << wire.endpoint() << std::endl;
  io.run();
}

}  // namespace kesp::simulator
