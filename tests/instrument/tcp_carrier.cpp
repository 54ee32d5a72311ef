// A TCP connection as the carrier of a conversation.
#include "tests/instrument/tcp_carrier.h"

#include <asio/buffer.hpp>
#include <asio/post.hpp>
#include <asio/redirect_error.hpp>
#include <asio/steady_timer.hpp>
#include <asio/use_awaitable.hpp>
#include <asio/write.hpp>
#include <sstream>
#include <utility>

namespace kesp::simulator {
namespace {

constexpr std::size_t kInputLength = std::size_t{64} * 1024;
// How much unread input is dropped before a close; a client that sends on for ever must not delay it for
// ever.
constexpr std::size_t kDropLimit = std::size_t{16} * 1024 * 1024;

std::string PeerOf(const asio::ip::tcp::socket& socket) {
  asio::error_code error;
  const asio::ip::tcp::endpoint peer = socket.remote_endpoint(error);
  if (error) return "a client that is gone";
  std::ostringstream text;
  text << peer;
  return text.str();
}

}  // namespace

TcpCarrier::TcpCarrier(asio::ip::tcp::socket socket)
    : socket_(std::move(socket)), peer_(PeerOf(socket_)), input_(kInputLength) {
  asio::error_code ignored;  // a client that is gone already shows at the first operation
  socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
}

std::string TcpCarrier::Peer() const {
  return peer_;
}

asio::awaitable<std::string> TcpCarrier::Receive() {
  asio::error_code error;
  const std::size_t count = co_await socket_.async_read_some(
      asio::buffer(input_), asio::redirect_error(asio::use_awaitable, error));
  if (error == asio::error::eof) co_return std::string();
  if (error) throw asio::system_error(error);
  co_return std::string(input_.data(), count);
}

asio::awaitable<void> TcpCarrier::Send(std::string_view bytes) {
  co_await asio::async_write(socket_, asio::buffer(bytes), asio::use_awaitable);
}

asio::awaitable<std::size_t> TcpCarrier::SendEndlessly(std::string_view block,
                                                       std::chrono::milliseconds length) {
  // Polled, because a client that stays and does not read would block a plain write past the deadline.
  asio::steady_timer timer(socket_.get_executor());
  const auto deadline = std::chrono::steady_clock::now() + length;
  socket_.non_blocking(true);
  std::size_t total = 0;
  while (std::chrono::steady_clock::now() < deadline) {
    asio::error_code error;
    total += socket_.write_some(asio::buffer(block.substr(total % block.size())), error);
    if (error && error != asio::error::would_block) break;
    // Either way the other connections get their turn.
    timer.expires_after(std::chrono::milliseconds(error ? 1 : 0));
    co_await timer.async_wait(asio::use_awaitable);
  }
  co_return total;
}

asio::awaitable<void> TcpCarrier::Pause(std::chrono::milliseconds length) {
  asio::steady_timer timer(socket_.get_executor(), length);
  co_await timer.async_wait(asio::use_awaitable);
}

void TcpCarrier::End(Ending ending) {
  asio::error_code ignored;  // the client may have ended the line first
  if (ending == Ending::kReset) {
    socket_.set_option(asio::socket_base::linger(true, 0), ignored);
  } else {
    DropInput();
    socket_.shutdown(asio::socket_base::shutdown_send, ignored);
  }
  socket_.close(ignored);
}

// Closing a socket with unread input makes the system send a reset, which can cost the client the reply.
void TcpCarrier::DropInput() {
  asio::error_code error;
  socket_.non_blocking(true, error);
  for (std::size_t dropped = 0; !error && dropped < kDropLimit;)
    dropped += socket_.read_some(asio::buffer(input_), error);
}

}  // namespace kesp::simulator
