// A scripted serial control, and ports that hand it out, for tests.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "serial/serial_control.h"
#include "serial/serial_control_errors.h"
#include "support/clock_fake.h"
#include "support/failing_call_fake.h"

namespace kesp {

// What the tests share with every control that the ports make: the line behind it, and a record of the calls.
// Bytes arrive by the fake clock, so time-outs take no time.
struct SerialLineFake {
  explicit SerialLineFake(ClockFake& line_clock);
  ~SerialLineFake();

  ClockFake& clock;

  // Told each call that changes something, for example "Open COM1 9600,N,8,1", "Output *IDN?<0D>", "DTR 0".
  std::function<void(std::string)> record = [](const std::string&) {};

  // Bytes that arrive so many milliseconds from now.
  void Arrive(std::string bytes, std::uint32_t in_ms = 0);
  // What the instrument answers, each time, so many milliseconds after exactly these bytes were written
  void Answer(const std::string& written, std::string reply, std::uint32_t in_ms = 1);
  // A radio modem that confirms the commands which point it at the instrument with address 26.
  void ConfirmAddress26();
  // The n-th call of an operation that may fail, from now on (1 is the next), fails with that number.
  void FailCall(int nth, std::int32_t number);
  FailingCallFake faults;
  std::int32_t fault_number = kSerialDeviceError;

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
  // The counts that OutBufferCount gives after a write, one each; then 0, or what a slow line has yet to
  // send.
  std::vector<std::int32_t> drain;
  // How long each character takes; 0 for a line that takes all at once.
  std::uint32_t ms_per_character = 0;
  // An adapter takes all at once, so that the driver neither counts nor clears what has yet to leave.
  bool has_adapter = false;
  // The number with which opening fails; 0 for none. One of the list each time, the last one for ever.
  std::deque<std::int32_t> open_failures;

  // Seen so far.
  std::string written;
  std::vector<std::string> writes;
  std::string left;  // the bytes that got onto the line
  bool open = false;
  int polls = 0;
};

class SerialControlFake final : public SerialControl {
 public:
  explicit SerialControlFake(SerialLineFake& line);
  ~SerialControlFake() override;

  void SetCommPort(std::int16_t port) override;
  void SetSettings(const std::wstring& settings) override;
  const std::wstring& Settings() const override { return settings_; }
  void SetHandshaking(SerialHandshaking handshaking) override;
  bool PortOpen() const override { return line_.open; }
  void Open() override;
  void Close() noexcept override;
  std::int32_t InBufferCount() override;
  std::int32_t OutBufferCount() override;
  void ClearInBuffer() override;
  void ClearOutBuffer() override;
  void SetDTREnable(bool on) override;
  void SetRTSEnable(bool on) override;
  void Output(std::string_view bytes) override;
  std::string Input() override;

  // Control characters and bytes above 126 as "<0D>".
  static std::string Visible(const std::string& bytes);

 private:
  void Called();
  void OpenCalled();
  void Poll();
  // Lets leave what has had its time.
  void Transmit();

  SerialLineFake& line_;
  std::int16_t port_ = 0;
  std::wstring settings_ = L"9600,N,8,1";
  std::string received_;
  std::deque<std::int32_t> draining_;
  std::string unsent_;
  std::int32_t next_leaves_ = 0;
};

class SerialPortsFake final : public SerialPorts {
 public:
  explicit SerialPortsFake(ClockFake& clock);
  ~SerialPortsFake() override;

  std::unique_ptr<SerialControl> MakeControl() override;

  std::int32_t IsCOMPortAvailable(std::int16_t port) override;

  SerialLineFake line;
  // The answer for each port that is not among `codes`, and for those that are.
  std::int32_t code = 0;
  std::map<std::int16_t, std::int32_t> codes;
  bool probing_fails = false;
  // A failing call throws std::runtime_error.
  FailingCallFake faults;
  // Runs at every question, before it is answered; may throw.
  std::function<void(std::int16_t)> on_question;
  std::vector<std::int16_t> asked;
};

}  // namespace kesp
