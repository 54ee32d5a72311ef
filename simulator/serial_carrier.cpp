// A serial line of Linux as the carrier of a talk.
#include "simulator/serial_carrier.h"

namespace kesp::simulator {
namespace {

constexpr std::size_t kInputLength = 4096;

}  // namespace

SerialCarrier::SerialCarrier(const asio::any_io_executor& executor, const std::string& link)
    : StreamCarrier(asio::posix::stream_descriptor(executor), kInputLength), terminal_(link) {
  stream_.assign(terminal_.TakeMaster());
  stream_.non_blocking(true);
}

std::string SerialCarrier::Opening() const {
  return "plugged in as " + terminal_.link() + " (" + terminal_.device() + ")";
}

void SerialCarrier::End(Ending /*ending*/) {
  terminal_.Pull();
  asio::error_code ignored;  // it may be closed already
  stream_.close(ignored);
}

std::optional<LineSettings> SerialCarrier::Line() const {
  if (!stream_.is_open()) return std::nullopt;
  return terminal_.settings();
}

std::string SerialCarrier::Rest() {
  std::string rest;
  asio::error_code error;
  while (stream_.is_open() && !error) {
    const std::size_t count = stream_.read_some(asio::buffer(input_), error);
    rest.append(input_.data(), count);
  }
  return rest;
}

}  // namespace kesp::simulator
