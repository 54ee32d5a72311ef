// A serial line as the carrier of a conversation.
#include "simulator/serial_carrier.h"

#include <asio/steady_timer.hpp>
#include <asio/write.hpp>

#include "simulator/carrier_stream.h"

namespace kesp::simulator {
namespace {

constexpr std::size_t kInputLength = 4096;

}  // namespace

SerialCarrier::SerialCarrier(const asio::any_io_executor& executor, const std::string& link)
    : terminal_(link), master_(executor, terminal_.TakeMaster()), input_(kInputLength) {
  master_.non_blocking(true);
}

std::string SerialCarrier::Opening() const {
  return "plugged in as " + terminal_.link() + " (" + terminal_.device() + ")";
}

asio::awaitable<Arrival> SerialCarrier::Receive(std::chrono::milliseconds patience) {
  return ReceiveFrom(master_, input_, patience);
}

asio::awaitable<void> SerialCarrier::Send(std::string_view bytes) {
  co_await asio::async_write(master_, asio::buffer(bytes), asio::use_awaitable);
}

asio::awaitable<std::size_t> SerialCarrier::SendEndlessly(std::string_view block,
                                                          std::chrono::milliseconds length) {
  return SendEndlesslyTo(master_, block, length);
}

asio::awaitable<void> SerialCarrier::Pause(std::chrono::milliseconds length) {
  asio::steady_timer timer(master_.get_executor(), length);
  co_await timer.async_wait(asio::use_awaitable);
}

void SerialCarrier::End(Ending /*ending*/) {
  terminal_.Pull();
  asio::error_code ignored;  // it may be closed already
  master_.close(ignored);
}

std::optional<LineSettings> SerialCarrier::Line() const {
  if (!master_.is_open()) return std::nullopt;
  return terminal_.settings();
}

std::string SerialCarrier::Rest() {
  std::string rest;
  asio::error_code error;
  while (master_.is_open() && !error) {
    const std::size_t count = master_.read_some(asio::buffer(input_), error);
    rest.append(input_.data(), count);
  }
  return rest;
}

}  // namespace kesp::simulator
