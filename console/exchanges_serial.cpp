// Gathers the lines of a trace into exchanges: the lines of the serial transport.
#include "console/exchanges.h"
#include "console/text_pieces.h"
#include "console/trace_bytes.h"

namespace kesp::console {
namespace {

// "75 69 13 " as the bytes with these codes.
std::string BytesOfCodes(std::string_view codes) {
  std::string bytes;
  while (const auto code = LeadingNumber(codes)) {
    bytes += static_cast<char>(*code);
    const std::size_t blank = codes.find(' ');
    if (blank == std::string_view::npos) break;
    codes.remove_prefix(blank + 1);
  }
  return bytes;
}

std::string_view WithoutCarriageReturn(std::string_view text) {
  return text.ends_with('\r') ? text.substr(0, text.size() - 1) : text;
}

}  // namespace

bool Exchanges::AddOfSerial(std::string_view message) {
  if (const auto opening = Behind(message, "Opening COM port ")) {
    if (IsBare()) Finish();
    constexpr std::string_view kSettings = " with settings ";
    const std::size_t settings = opening->find(kSettings);
    if (settings == std::string_view::npos) return false;
    serial_place_ = "com" + std::string(opening->substr(0, settings));
    serial_settings_ = opening->substr(settings + kSettings.size());
    if (!open_) return true;
    open_->place = serial_place_;
    open_->settings = serial_settings_;
    return true;
  }
  if (message.starts_with("Closing COM port ") || message.starts_with("Closed COM port ")) {
    if (IsBare()) Finish();
    return true;
  }
  if (message == "WriteLine...") {
    if (!open_ || IsBare()) Start(Kind::kCall);
    return true;
  }
  if (const auto sending = Behind(message, "Sending '")) {
    AddSending(*sending);
    return true;
  }
  if (const auto received = Behind(message, "Received '"); received && message != "Received 'OK'") {
    AddReceived(*received);
    return true;
  }
  if (const auto text = Behind(message, "Downloaded from COM port ")) {
    if (!IsBare()) Start(Kind::kCall);
    open_->place = serial_place_;
    open_->settings = serial_settings_;
    const std::size_t begin = text->find(": \r");
    if (begin != std::string_view::npos) SetReceived(WireBytes(text->substr(begin + 3)), true, true);
    return true;
  }
  return AddOfModem(message);
}

// "*IDN?\r' on COM port 3"
void Exchanges::AddSending(std::string_view text) {
  constexpr std::string_view kOnPort = "' on COM port ";
  const std::size_t end = text.rfind(kOnPort);
  if (end == std::string_view::npos) return;
  if (!open_) Start(Kind::kCall);
  const std::string place = "com" + std::string(text.substr(end + kOnPort.size()));
  if (place != serial_place_) serial_settings_.clear();
  serial_place_ = open_->place = place;
  open_->settings = serial_settings_;
  open_->frame = WireBytes(text.substr(0, end));
  if (!of_object_) open_->command = WithoutCarriageReturn(*open_->frame);
  open_->was_sent = true;
  sent_at_ = now_;
}

// "21.4\r\n' (raw) on COM3(Asc: 50 49 46 52 13 10 )", "21.4' (filtered) on COM3", "bytes' (raw) on COM3"
void Exchanges::AddReceived(std::string_view text) {
  if (!open_) return;
  const std::size_t filtered = text.rfind("' (filtered) on COM");
  if (filtered != std::string_view::npos) {
    if (!of_object_) open_->reply = text.substr(0, filtered);
    return;
  }
  const std::size_t raw = text.rfind("' (raw) on COM");
  if (raw == std::string_view::npos) return SetReceived(WireBytes(text), true, false);
  constexpr std::string_view kCodes = "(Asc: ";
  const std::string_view shown = text.substr(0, raw);
  const std::size_t codes = text.find(kCodes, raw);
  if (codes == std::string_view::npos) return SetReceived(WireBytes(shown), true, true);
  const std::string bytes = BytesOfCodes(text.substr(codes + kCodes.size()));
  is_utf8_ = is_utf8_ || (bytes != shown && WireBytesOfUtf8(shown) == bytes);
  SetReceived(bytes, true, true);
  // Without a line feed the library may have waited until its timeout; the trace does not tell.
  if (bytes.ends_with('\n')) open_->delay_ms = MillisecondsBetween(sent_at_, now_);
}

bool Exchanges::AddOfModem(std::string_view message) {
  if (message == "ReadLine..." || message == "Waiting for 'OK'") {
    if (IsBare()) (message == "ReadLine..." ? open_->was_read : open_->is_modem) = true;
    return true;
  }
  if (message == "Received 'OK'") {
    if (IsBare()) open_->reply = "OK";
    return true;
  }
  if (message == "Timed out waiting for 'OK'") {
    if (IsBare()) Fail("", message);
    return true;
  }
  // "** ReadLine() error: 8020 - text [source] **"
  const auto error = Within(message, "** ", "] **");
  if (!error || error->find("() error: ") == std::string_view::npos) return false;
  const std::size_t source = error->rfind(" [");
  const std::size_t text = error->find(" - ");
  const bool is_told = source != std::string_view::npos && text != std::string_view::npos && text < source;
  if (IsBare() && is_told) Fail(error->substr(source + 2), error->substr(text + 3, source - text - 3));
  return true;
}

}  // namespace kesp::console
