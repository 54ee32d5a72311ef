// A TCP connection as the carrier of a talk.
#include "simulator/tcp_carrier.h"

#include <sstream>
#include <utility>

namespace kesp::simulator {
namespace {

constexpr std::size_t kInputLength = std::size_t{64} * 1024;
// How much unread input is dropped before a close; a client that sends on for ever must not delay it for
// ever.
constexpr std::size_t kDropLimit = std::size_t{16} * 1024 * 1024;

std::string EndsOf(const asio::ip::tcp::socket& socket, Tells tells) {
  asio::error_code error;
  const asio::ip::tcp::endpoint peer = socket.remote_endpoint(error);
  const asio::ip::tcp::endpoint own = error ? peer : socket.local_endpoint(error);
  if (error) return "a client that is gone";
  std::ostringstream text;
  text << peer;
  if (tells == Tells::kBothEnds) text << " to " << own;
  return text.str();
}

}  // namespace

TcpCarrier::TcpCarrier(asio::ip::tcp::socket socket, Tells tells)
    : StreamCarrier(std::move(socket), kInputLength), ends_(EndsOf(stream_, tells)) {
  asio::error_code ignored;  // a client that is gone already shows at the first operation
  stream_.set_option(asio::ip::tcp::no_delay(true), ignored);
}

std::string TcpCarrier::Opening() const {
  return "connected from " + ends_;
}

void TcpCarrier::End(Ending ending) {
  asio::error_code ignored;  // the client may have ended the line first
  if (ending == Ending::kReset) {
    stream_.set_option(asio::socket_base::linger(true, 0), ignored);
  } else {
    DropInput();
    stream_.shutdown(asio::socket_base::shutdown_send, ignored);
  }
  stream_.close(ignored);
}

void TcpCarrier::Abandon() {
  asio::error_code ignored;  // it may be closed already
  stream_.cancel(ignored);
}

// Closing a socket with unread input makes the system send a reset, which can cost the client the reply.
void TcpCarrier::DropInput() {
  asio::error_code error;
  stream_.non_blocking(true, error);
  for (std::size_t dropped = 0; !error && dropped < kDropLimit;)
    dropped += stream_.read_some(asio::buffer(input_), error);
}

}  // namespace kesp::simulator
