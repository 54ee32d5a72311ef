// The scripted serial control, the line behind it, and the ports that hand it out.
#include "serial/serial_control_fake.h"

#include <stdexcept>
#include <utility>

#include "serial/line_settings.h"
#include "support/text.h"

namespace kesp {

SerialLineFake::SerialLineFake(ClockFake& line_clock) : clock(line_clock) {}

SerialLineFake::~SerialLineFake() = default;

void SerialLineFake::Arrive(std::string bytes, std::uint32_t in_ms) {
  arrivals.push_back({clock.tick() + static_cast<std::int32_t>(in_ms), std::move(bytes)});
}

void SerialLineFake::Answer(const std::string& written, std::string reply, std::uint32_t in_ms) {
  answers[written] = {std::move(reply), in_ms};
}

void SerialLineFake::ConfirmAddress26() {
  for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) Answer(command, "OK\r");
}

void SerialLineFake::FailCall(int nth, std::int32_t number) {
  faults.Fail(nth);
  fault_number = number;
}

SerialControlFake::SerialControlFake(SerialLineFake& line) : line_(line) {}

SerialControlFake::~SerialControlFake() {
  line_.record("Destroyed");
}

void SerialControlFake::SetCommPort(std::int16_t port) {
  Called();
  if (line_.open) throw SerialControlFailure(kSerialPortIsOpen);
  port_ = port;
}

void SerialControlFake::SetSettings(const std::wstring& settings) {
  Called();
  if (!ReadLineSettings(settings)) throw SerialControlFailure(kSerialInvalidValue);
  settings_ = settings;
}

void SerialControlFake::SetHandshaking(SerialHandshaking handshaking) {
  Called();
  line_.record("Handshaking " + std::to_string(static_cast<int>(handshaking)));
}

void SerialControlFake::Open() {
  Called();
  if (!line_.open_failures.empty()) {
    const std::int32_t number = line_.open_failures.front();
    if (line_.open_failures.size() > 1) line_.open_failures.pop_front();
    if (number != 0) throw SerialControlFailure(number);
  }
  line_.open = true;
  line_.record("Open COM" + std::to_string(port_) + " " + SystemCodePage().ToBytes(settings_));
}

void SerialControlFake::Close() noexcept {
  if (line_.open) line_.record("Close");
  line_.open = false;
  Transmit();
  unsent_.clear();
  received_.clear();
}

std::int32_t SerialControlFake::InBufferCount() {
  Poll();
  return static_cast<std::int32_t>(received_.size());
}

std::int32_t SerialControlFake::OutBufferCount() {
  Poll();
  Transmit();
  if (draining_.empty()) return line_.has_adapter ? 0 : static_cast<std::int32_t>(unsent_.size());
  const std::int32_t count = draining_.front();
  draining_.pop_front();
  return count;
}

void SerialControlFake::ClearInBuffer() {
  Poll();
  line_.record("ClearIn");
  received_.clear();
}

void SerialControlFake::ClearOutBuffer() {
  OpenCalled();
  line_.record("ClearOut");
  draining_.clear();
  Transmit();
  if (!line_.has_adapter) unsent_.clear();
}

void SerialControlFake::SetDTREnable(bool on) {
  Called();
  line_.record(on ? "DTR 1" : "DTR 0");
}

void SerialControlFake::SetRTSEnable(bool on) {
  Called();
  line_.record(on ? "RTS 1" : "RTS 0");
}

void SerialControlFake::Output(std::string_view bytes) {
  OpenCalled();
  const std::string sent(bytes);
  line_.record("Output " + Visible(sent));
  line_.written += sent;
  line_.writes.push_back(sent);
  Transmit();
  if (unsent_.empty()) next_leaves_ = line_.clock.tick() + static_cast<std::int32_t>(line_.ms_per_character);
  unsent_ += sent;
  Transmit();
  draining_.assign(line_.drain.begin(), line_.drain.end());
  if (const auto found = line_.answers.find(sent); found != line_.answers.end()) {
    line_.Arrive(found->second.bytes, found->second.in_ms);
  }
  if (line_.on_output) line_.on_output(sent, settings_);
}

std::string SerialControlFake::Input() {
  Poll();
  return std::exchange(received_, std::string());
}

void SerialControlFake::Transmit() {
  if (line_.ms_per_character == 0) line_.left += std::exchange(unsent_, std::string());
  while (!unsent_.empty() && line_.clock.tick() >= next_leaves_) {
    line_.left += unsent_.front();
    unsent_.erase(0, 1);
    next_leaves_ += static_cast<std::int32_t>(line_.ms_per_character);
  }
}

std::string SerialControlFake::Visible(const std::string& bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 32 && code < 127) {
      text += byte;
    } else {
      text += std::string("<") + kDigits[code / 16] + kDigits[code % 16] + ">";
    }
  }
  return text;
}

void SerialControlFake::Called() {
  if (line_.faults.IsFailing()) throw SerialControlFailure(line_.fault_number);
}

void SerialControlFake::OpenCalled() {
  Called();
  if (!line_.open) throw SerialControlFailure(kSerialPortNotOpen);
}

void SerialControlFake::Poll() {
  ++line_.polls;
  if (line_.on_poll) line_.on_poll();
  OpenCalled();
  // Only what is due; a reply may be scheduled behind a later one.
  const std::int32_t now = line_.clock.tick();
  for (auto arrival = line_.arrivals.begin(); arrival != line_.arrivals.end();) {
    if (arrival->tick > now) {
      ++arrival;
      continue;
    }
    received_ += arrival->bytes;
    arrival = line_.arrivals.erase(arrival);
  }
}

SerialPortsFake::SerialPortsFake(ClockFake& clock) : line(clock) {}

SerialPortsFake::~SerialPortsFake() = default;

std::unique_ptr<SerialControl> SerialPortsFake::MakeControl() {
  if (faults.IsFailing()) throw std::runtime_error("no control can be made");
  return std::make_unique<SerialControlFake>(line);
}

std::int32_t SerialPortsFake::IsCOMPortAvailable(std::int16_t port) {
  if (faults.IsFailing() || probing_fails) throw std::runtime_error("the ports cannot be listed");
  asked.push_back(port);
  if (on_question) on_question(port);
  const auto own = codes.find(port);
  return own == codes.end() ? code : own->second;
}

}  // namespace kesp
