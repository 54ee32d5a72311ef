// Gathers the lines of a trace into exchanges: what is common, and the lines of the communication object.
#include "console/exchanges.h"

#include <utility>

#include "console/text_pieces.h"
#include "console/trace_bytes.h"

namespace kesp::console {
namespace {

// Without the note that the radio modem's address adds to each line.
std::string_view WithoutRadioAddress(std::string_view message) {
  constexpr std::string_view kNote = " (RF address ";
  const std::size_t place = message.rfind(kNote);
  if (place == std::string_view::npos || !message.ends_with(')')) return message;
  const std::string_view number =
      message.substr(place + kNote.size(), message.size() - place - kNote.size() - 1);
  return number.find_first_not_of("-0123456789") == std::string_view::npos ? message.substr(0, place)
                                                                           : message;
}

// Why an exchange without a reply counts as failed; empty where none is expected.
std::string MissingReply(const Exchange& exchange) {
  switch (exchange.kind) {
    case Exchange::Kind::kDiscovery:
      return "Nobody answered";
    case Exchange::Kind::kQuery:
      return "The trace does not tell the end";
    case Exchange::Kind::kCall:
      return exchange.was_read ? "No reply" : "";
    default:
      return {};
  }
}

}  // namespace

void Exchanges::Add(const TraceLine& line) {
  now_ = line.counter;
  when_ = line.when;
  cut_ = line.cut;
  const std::string_view message = WithoutRadioAddress(line.message);
  const bool is_known = AddOfObject(message) || AddOfDiscovery(message) || AddOfNetwork(message) ||
                        AddOfSerial(message) || AddOfIeee(message);
  if (is_known && open_) open_->duration_ms = MillisecondsBetween(open_->counter, now_);
}

void Exchanges::Pause() {
  if (!open_ || has_ending_) return;
  // Over the network the rest of a reply may come after any time.
  const bool is_received = open_->received ? open_->is_whole || open_->was_closed : open_->reply.has_value();
  if (is_received || open_->has_failed) Finish();
}

void Exchanges::End() {
  Finish();
}

void Exchanges::Start(Kind kind, std::optional<std::string> command) {
  Finish();
  open_.emplace();
  open_->kind = kind;
  open_->when = when_;
  open_->counter = now_;
  open_->command = std::move(command);
  of_object_ = false;
  has_ending_ = false;
  has_ended_ = false;
  known_ = false;
  sent_at_ = arrived_at_ = now_;
}

void Exchanges::Finish() {
  if (!open_) return;
  Exchange exchange = *std::exchange(open_, std::nullopt);
  has_ending_ = false;
  if (exchange.kind == Kind::kOpening && !exchange.has_failed) return;
  const bool is_answered = exchange.reply || exchange.received;
  const bool is_query = exchange.kind == Kind::kQuery || exchange.kind == Kind::kBinaryQuery;
  const bool has_end = has_ended_ || exchange.is_whole || exchange.was_closed;
  exchange.is_unfinished = is_query && !exchange.has_failed && !(is_answered && has_end);
  exchange.is_whole = known_ && (exchange.is_whole || !exchange.has_failed);
  if (!exchange.has_failed && !is_answered) {
    exchange.description = MissingReply(exchange);
    exchange.has_failed = !exchange.description.empty();
  }
  on_exchange_(exchange);
}

void Exchanges::Fail(std::string_view source, std::string_view description) {
  open_->has_failed = true;
  open_->source = source;
  open_->description = description;
}

void Exchanges::SetReceived(std::string bytes, bool complete, bool known) {
  open_->received = std::move(bytes);
  open_->is_whole = complete;
  known_ = known && !cut_;
}

std::string Exchanges::WireBytes(std::string_view text) const {
  if (is_utf8_) {
    if (std::optional<std::string> bytes = WireBytesOfUtf8(text)) return *bytes;
  }
  return std::string(text);
}

bool Exchanges::AddOfObject(std::string_view message) {
  constexpr std::pair<std::string_view, Kind> kBeginnings[] = {
      {"Beginning Query()... (command: ", Kind::kQuery}, {"Beginning Update()...(command: ", Kind::kUpdate}};
  for (const auto& [beginning, kind] : kBeginnings) {
    const auto command = Within(message, beginning, ")");
    if (!command) continue;
    Start(kind, WireBytes(*command));
    of_object_ = has_ending_ = true;
    return true;
  }
  if (message.starts_with("Exiting Query()...(command: ") ||
      message.starts_with("Exiting Update()...(command: ")) {
    if (open_) open_->duration_ms = MillisecondsBetween(open_->counter, now_);
    has_ended_ = true;
    Finish();
    return true;
  }
  for (const std::string_view transport : {"TCP: ", "RS-232: ", "IEEE: "}) {
    if (const auto step = Behind(message, transport)) return AddStep(transport, *step);
  }
  return false;
}

bool Exchanges::AddStep(std::string_view transport, std::string_view step) {
  if (step == "Initialize()" || step == "OpenPort()") {
    if (!has_ending_) Start(Kind::kBinaryQuery);
    of_object_ = true;
    return true;
  }
  if (!open_) return true;
  for (const std::string_view name : {"WriteLine(", "Writeline("}) {
    if (const auto arguments = Within(step, name, ")")) AddWriting(transport, *arguments);
  }
  if (const auto failed = Behind(step, "** ")) AddErrorInfo(*failed);
  if (const auto result = Behind(step, "result- ")) {
    open_->reply = *result;
    // On the GPIB nothing else tells what came, and it is the first 50 characters.
    constexpr std::size_t kMostOnGpib = 50;
    if (transport == "IEEE: ") {
      SetReceived(WireBytes(*result), result->size() < kMostOnGpib, true);
      open_->delay_ms = MillisecondsBetween(sent_at_, now_);
    }
  }
  if (step == "Uninitialize()" || step == "ClosePort()") {
    open_->duration_ms = MillisecondsBetween(open_->counter, now_);
    has_ended_ = true;
    if (!has_ending_) Finish();
  }
  return true;
}

// At a COM port the arguments are command, Omega address and value.
void Exchanges::AddWriting(std::string_view transport, std::string_view arguments) {
  std::string_view command = arguments;
  if (transport == "RS-232: ") {
    const std::size_t second = command.rfind(',');
    command = command.substr(0, second);
    const std::size_t first = command.rfind(',');
    if (first != std::string_view::npos) open_->omega_address = command.substr(first + 1);
    command = command.substr(0, first);
  }
  if (!has_ending_) open_->command = WireBytes(command);
  // What came before belongs to the radio modem or the switch.
  open_->received.reset();
  open_->frame.reset();
  open_->delay_ms.reset();
  open_->was_sent = true;
  open_->is_whole = known_ = false;
  sent_at_ = now_;
}

void Exchanges::AddErrorInfo(std::string_view step) {
  const std::size_t info = step.find(" Error info: Source- ");
  constexpr std::string_view kDescription = "  Description- ";
  const std::size_t description = step.find(kDescription);
  // A failure to close changes nothing of what the exchange came to.
  const bool is_other =
      info == std::string_view::npos || description == std::string_view::npos || info > description;
  if (is_other || step.starts_with("ClosePort()")) return;
  if (!step.starts_with("Read")) open_->was_sent = false;
  std::string_view text = step.substr(description + kDescription.size());
  if (text.ends_with(" **")) text.remove_suffix(3);
  const std::size_t source = info + std::string_view(" Error info: Source- ").size();
  Fail(step.substr(source, description - source), text);
}

}  // namespace kesp::console
