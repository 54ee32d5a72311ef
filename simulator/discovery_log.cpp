// The lines of the log about the datagrams of one answer to discovery.
#include "simulator/discovery_log.h"

#include <sstream>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

constexpr std::size_t kFew = 10;

std::string From(const std::optional<asio::ip::address_v4>& address) {
  return address ? " from " + address->to_string() : std::string();
}

}  // namespace

DiscoveryLog::DiscoveryLog(EventLog& log, const asio::ip::udp::endpoint& to,
                           const std::optional<AddressRange>& from, std::size_t count)
    : log_(log),
      to_(TextOf(to)),
      range_(from ? " from " + from->Text() : std::string()),
      each_(count <= kFew) {}

void DiscoveryLog::Sent(const std::optional<asio::ip::address_v4>& from, std::size_t bytes) {
  ++sent_;
  bytes_ += bytes;
  if (each_ && log_.on())
    log_.Line(0, "discovery reply to " + to_ + From(from) + " (" + Counted(bytes, "byte") + ")");
}

void DiscoveryLog::Failed(const std::optional<asio::ip::address_v4>& from, const std::error_code& error) {
  ++failed_;
  if (each_ || failed_ == 1)
    log_.Line(0, "discovery reply to " + to_ + From(from) + " failed: " + error.message());
}

void DiscoveryLog::Finish() {
  if (each_) return;
  log_.Line(0, "discovery replies to " + to_ + range_ + ": " + std::to_string(sent_) + " sent (" +
                   Counted(bytes_, "byte") + "), " + std::to_string(failed_) + " failed");
}

std::string TextOf(const asio::ip::udp::endpoint& endpoint) {
  std::ostringstream text;
  text << endpoint;
  return text.str();
}

}  // namespace kesp::simulator
