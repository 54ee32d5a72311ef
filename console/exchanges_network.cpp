// Gathers the lines of a trace into exchanges: the lines of the network transport and of the GPIB transport.
#include <algorithm>

#include "console/exchanges.h"
#include "console/text_pieces.h"
#include "console/trace_bytes.h"

namespace kesp::console {
namespace {

// "127.0.0.1 on port 10001" as the place.
std::string PlaceOnPort(std::string_view text) {
  constexpr std::string_view kOnPort = " on port ";
  const std::size_t port = text.rfind(kOnPort);
  if (port == std::string_view::npos) return {};
  return "tcp:" + std::string(text.substr(0, port)) + ":" + std::string(text.substr(port + kOnPort.size()));
}

// The arrival's own line shows no more of it.
constexpr std::size_t kMostLogged = 65536;

}  // namespace

bool Exchanges::AddOfNetwork(std::string_view message) {
  if (AddConnecting(message)) return true;
  if (const auto progress = Behind(message, "Send Progress (")) return AddSendProgress(*progress);
  if (message.starts_with("Send complete (")) {
    if (!open_) return true;
    open_->was_sent = true;
    sent_at_ = now_;
    return true;
  }
  if (message.starts_with("DataArrival (")) {
    arrived_at_ = now_;
    return true;
  }
  if (const auto data = Behind(message, "Socket Data arrived: <")) {
    if (open_ && open_->was_sent) AddArrival(*data);
    return true;
  }
  if (message.starts_with("Close (")) {
    if (open_ && open_->was_sent) open_->was_closed = true;
    return true;
  }
  if (const auto error = Behind(message, "Error: ")) {
    if (IsBare() && !open_->has_failed) Fail("", *error);
    return true;
  }
  if (const auto command = Behind(message, "Unable to send command '")) {
    if (!IsBare()) Start(Kind::kCall);
    open_->command = command->substr(0, command->rfind("' to "));
    Fail("", message);
    return true;
  }
  return false;
}

bool Exchanges::AddConnecting(std::string_view message) {
  if (const auto target = Within(message, "Connecting to ", "...")) {
    const bool goes_on = open_ && (of_object_ || open_->kind == Kind::kOpening);
    if (!goes_on) Start(Kind::kOpening);
    open_->place = PlaceOnPort(*target);
    return true;
  }
  if (message.starts_with("Connect (")) {
    // What was opened is told by what is sent.
    if (IsBare() && open_->kind == Kind::kOpening) open_.reset();
    return true;
  }
  if (message == "Connection timeout..." || message.starts_with("Unable to establish connection to ")) {
    if (IsBare()) Fail("", message);
    return true;
  }
  return message.starts_with("Retrying...(State: ") ||
         message == "Waiting for connection to be established...";
}

// "127.0.0.1:10001) - Sent: 6 Remaining: 0"
bool Exchanges::AddSendProgress(std::string_view text) {
  constexpr std::string_view kSent = ") - Sent: ";
  const std::size_t sent = text.rfind(kSent);
  if (sent == std::string_view::npos) return false;
  const bool is_new = !open_ || (IsBare() && (open_->was_sent || open_->kind == Kind::kOpening));
  if (is_new) Start(Kind::kCall);
  if (IsBare()) open_->place = "tcp:" + std::string(text.substr(0, sent));
  open_->sent_bytes += static_cast<std::size_t>(LeadingNumber(text.substr(sent + kSent.size())).value_or(0));
  return true;
}

// "data> (length: 23  last byte: 13 EOS: 13 EOS?: True)": everything that is pending, so that a later one
// replaces it.
void Exchanges::AddArrival(std::string_view text) {
  constexpr std::string_view kLength = " (length: ";
  const std::size_t place = text.rfind(kLength);
  if (place == std::string_view::npos) return;
  const bool complete = text.ends_with("EOS?: True)");
  const auto length =
      static_cast<std::size_t>(LeadingNumber(text.substr(place + kLength.size())).value_or(0));
  const std::string_view head = text.substr(0, place);
  const std::string_view data = head.substr(0, head.rfind('>'));
  const std::size_t shown = std::min(length, kMostLogged);
  std::optional<std::string> bytes;
  if (data.size() == shown) bytes = data;
  if (!bytes) {
    bytes = WireBytesOfUtf8(data);
    if (bytes && bytes->size() != shown) bytes.reset();
    is_utf8_ = is_utf8_ || bytes;
  }
  const bool known = bytes && length == shown;
  SetReceived(bytes ? *bytes : std::string(data), complete, known);
  open_->delay_ms = MillisecondsBetween(sent_at_, arrived_at_);
}

bool Exchanges::AddOfDiscovery(std::string_view message) {
  if (const auto target = Within(message, "Sending broadcast command to ", "...")) {
    Start(Kind::kDiscovery);
    if (const std::string place = PlaceOnPort(*target); !place.empty())
      open_->place = "udp" + place.substr(3);
    return true;
  }
  if (!open_ || open_->kind != Kind::kDiscovery) return false;
  if (const auto found = Within(message, "UDP discovery successful. Found ", " devices.")) {
    open_->reply = std::string(*found) + (*found == "1" ? " instrument" : " instruments");
    open_->duration_ms = MillisecondsBetween(open_->counter, now_);
    Finish();
    return true;
  }
  constexpr std::string_view kOthers[] = {
      "Send Progress (",        "Send complete (",    "DataArrival (",
      "Socket Data arrived: <", "Receiving from ",    "Received buffer data: ",
      "Stored object for ",     "Duplicate device: ", "Too many devices, "};
  return std::any_of(std::begin(kOthers), std::end(kOthers),
                     [&](std::string_view other) { return message.starts_with(other); });
}

bool Exchanges::AddOfIeee(std::string_view message) {
  if (message == "Check Board Index...") {
    if (!open_ || IsBare()) Start(Kind::kOpening);
    open_->place = "gpib";
    return true;
  }
  const auto error = Behind(message, "Error ib");
  if (!error) return false;
  if (IsBare()) Fail("", message);
  return true;
}

}  // namespace kesp::console
