// A scripted serial control, and ports that hand it out, for tests.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "serial/line_settings.h"
#include "serial/serial_control.h"
#include "serial/serial_control_errors.h"
#include "support/clock_fake.h"
#include "support/text.h"

namespace kesp {

// What the tests share with every control that the ports make: the line behind it, and a record of the calls.
// Bytes arrive by the fake clock, so time-outs take no time.
struct SerialLineFake {
  explicit SerialLineFake(ClockFake& line_clock) : clock(line_clock) {}

  ClockFake& clock;

  // Told each call that changes something, for example "Open COM1 9600,N,8,1", "Output *IDN?<0D>", "DTR 0".
  std::function<void(std::string)> record = [](const std::string&) {};

  // Bytes that arrive so many milliseconds from now.
  void Arrive(std::string bytes, std::uint32_t in_ms = 0) {
    arrivals.push_back({clock.tick() + static_cast<std::int32_t>(in_ms), std::move(bytes)});
  }
  // What the instrument answers, each time, so many milliseconds after exactly these bytes were written
  void Answer(const std::string& written, std::string reply, std::uint32_t in_ms = 1) {
    answers[written] = {std::move(reply), in_ms};
  }
  // The n-th call of an operation that may fail, from now on (1 is the next), fails with that number.
  void FailCall(int nth, std::int32_t number) {
    fail_at = calls + nth;
    fail_number = number;
  }

  struct Arrival {
    std::int32_t tick;
    std::string bytes;
  };
  struct Reply {
    std::string bytes;
    std::uint32_t in_ms;
  };
  std::deque<Arrival> arrivals;
  std::map<std::string, Reply> answers;
  // Asked after `answers`: what the instrument does with bytes written while the port has these settings.
  std::function<void(const std::string& written, const std::wstring& settings)> on_output;
  // Runs at every look at the input or output, before it is answered.
  std::function<void()> on_poll;
  // The counts that OutBufferCount gives after a write, one each; then 0.
  std::vector<std::int32_t> drain;
  // The number with which opening fails; 0 for none. One of the list each time, the last one for ever.
  std::deque<std::int32_t> open_failures;
  int calls = 0;
  int fail_at = 0;
  std::int32_t fail_number = 0;

  // Seen so far.
  std::string written;
  std::vector<std::string> writes;
  bool open = false;
  int polls = 0;
};

class SerialControlFake final : public SerialControl {
 public:
  explicit SerialControlFake(SerialLineFake& line) : line_(line) {}
  ~SerialControlFake() override { line_.record("Destroyed"); }

  void SetCommPort(std::int16_t port) override {
    Called();
    if (line_.open) throw SerialControlFailure(kSerialPortIsOpen);
    port_ = port;
  }
  void SetSettings(const std::wstring& settings) override {
    Called();
    if (!ReadLineSettings(settings)) throw SerialControlFailure(kSerialInvalidValue);
    settings_ = settings;
  }
  const std::wstring& Settings() const override { return settings_; }
  void SetHandshaking(SerialHandshaking handshaking) override {
    Called();
    line_.record("Handshaking " + std::to_string(static_cast<int>(handshaking)));
  }
  bool PortOpen() const override { return line_.open; }
  void Open() override {
    Called();
    if (!line_.open_failures.empty()) {
      const std::int32_t number = line_.open_failures.front();
      if (line_.open_failures.size() > 1) line_.open_failures.pop_front();
      if (number != 0) throw SerialControlFailure(number);
    }
    line_.open = true;
    line_.record("Open COM" + std::to_string(port_) + " " + SystemCodePage().ToBytes(settings_));
  }
  void Close() noexcept override {
    if (line_.open) line_.record("Close");
    line_.open = false;
    received_.clear();
  }
  std::int32_t InBufferCount() override {
    Poll();
    return static_cast<std::int32_t>(received_.size());
  }
  std::int32_t OutBufferCount() override {
    Poll();
    if (draining_.empty()) return 0;
    const std::int32_t count = draining_.front();
    draining_.pop_front();
    return count;
  }
  void ClearInBuffer() override {
    Poll();
    line_.record("ClearIn");
    received_.clear();
  }
  void ClearOutBuffer() override {
    OpenCalled();
    line_.record("ClearOut");
    draining_.clear();
  }
  void SetDTREnable(bool on) override {
    Called();
    line_.record(on ? "DTR 1" : "DTR 0");
  }
  void SetRTSEnable(bool on) override {
    Called();
    line_.record(on ? "RTS 1" : "RTS 0");
  }
  void Output(std::string_view bytes) override {
    OpenCalled();
    const std::string sent(bytes);
    line_.record("Output " + Visible(sent));
    line_.written += sent;
    line_.writes.push_back(sent);
    draining_.assign(line_.drain.begin(), line_.drain.end());
    if (const auto found = line_.answers.find(sent); found != line_.answers.end()) {
      line_.Arrive(found->second.bytes, found->second.in_ms);
    }
    if (line_.on_output) line_.on_output(sent, settings_);
  }
  std::string Input() override {
    Poll();
    return std::exchange(received_, std::string());
  }

  // Control characters and bytes above 126 as "<0D>".
  static std::string Visible(const std::string& bytes) {
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

 private:
  void Called() {
    if (++line_.calls == line_.fail_at) throw SerialControlFailure(line_.fail_number);
  }
  void OpenCalled() {
    Called();
    if (!line_.open) throw SerialControlFailure(kSerialPortNotOpen);
  }
  void Poll() {
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

  SerialLineFake& line_;
  std::int16_t port_ = 0;
  std::wstring settings_ = L"9600,N,8,1";
  std::string received_;
  std::deque<std::int32_t> draining_;
};

class SerialPortsFake final : public SerialPorts {
 public:
  explicit SerialPortsFake(ClockFake& clock) : line(clock) {}

  std::unique_ptr<SerialControl> MakeControl() override { return std::make_unique<SerialControlFake>(line); }

  std::int32_t IsCOMPortAvailable(std::int16_t port) override {
    if (probing_fails) throw std::runtime_error("the ports cannot be listed");
    asked.push_back(port);
    if (on_question) on_question(port);
    const auto own = codes.find(port);
    return own == codes.end() ? code : own->second;
  }

  SerialLineFake line;
  // The answer for each port that is not among `codes`, and for those that are.
  std::int32_t code = 0;
  std::map<std::int16_t, std::int32_t> codes;
  bool probing_fails = false;
  // Runs at every question, before it is answered; may throw.
  std::function<void(std::int16_t)> on_question;
  std::vector<std::int16_t> asked;
};

}  // namespace kesp
