// A TCP connection as the carrier of a conversation.
#include "simulator/tcp_carrier.h"

#include <asio/steady_timer.hpp>
#include <asio/write.hpp>
#include <sstream>
#include <utility>

#include "simulator/carrier_stream.h"

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

std::string TcpCarrier::Opening() const {
  return "connected from " + peer_;
}

asio::awaitable<Arrival> TcpCarrier::Receive(std::chrono::milliseconds patience) {
  return ReceiveFrom(socket_, input_, patience);
}

asio::awaitable<void> TcpCarrier::Send(std::string_view bytes) {
  co_await asio::async_write(socket_, asio::buffer(bytes), asio::use_awaitable);
}

asio::awaitable<std::size_t> TcpCarrier::SendEndlessly(std::string_view block,
                                                       std::chrono::milliseconds length) {
  return SendEndlesslyTo(socket_, block, length);
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
