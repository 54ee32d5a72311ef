// A serial port whose instrument, adapter and failures are the bytes of a fuzzer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "serial/serial_control.h"
#include "tests/fuzz/conversation_world.h"
#include "tests/fuzz/input.h"

namespace kesp {

// Told what the transport does at the port, so that a model can keep in step.
class LineWatcher {
 public:
  virtual ~LineWatcher() = default;

  // A look at what was received begins; no time has passed yet.
  virtual void Reading() {}
  // What the look has taken.
  virtual void Taken(const std::string& /*bytes*/) {}
  virtual void Counting() {}
  virtual void Counted(std::int32_t /*count*/) {}
  virtual void Clearing() {}
  virtual void Writing(std::string_view /*bytes*/) {}
  virtual void CountedOutput(std::int32_t /*count*/) {}
  virtual void Failing() {}
};

// The ports of the machine, and the one line behind all of them. Holds to the contract of the seam, and
// requires that its user does. Each look lets a byte say what has happened since; when the bytes are used up,
// the line is silent.
class ConversationLine final : public SerialPorts {
 public:
  ConversationLine(ConversationClock& clock, FuzzInput& input) : clock_(clock), input_(input) {}

  // Lives longer than every control.
  void SetWatcher(LineWatcher& watcher) { watcher_ = &watcher; }

  std::unique_ptr<SerialControl> MakeControl() override;
  std::int32_t IsCOMPortAvailable(std::int16_t port) override;

  // From now on nothing fails, and each command is answered so.
  void BeGood(std::string reply);
  void FailCall(int nth, std::int32_t number);

  bool is_open() const { return open_; }
  const std::wstring& settings() const { return settings_; }
  std::int16_t port() const { return port_; }
  std::int32_t last_code() const { return last_code_; }

 private:
  class Control;

  void Called();
  void OpenCalled();
  void Look();
  void Receive(std::uint8_t how);

  ConversationClock& clock_;
  FuzzInput& input_;
  LineWatcher* watcher_ = nullptr;
  bool good_ = false;
  std::string good_reply_;
  int fail_in_ = 0;
  std::int32_t fail_number_ = 0;
  bool open_ = false;
  std::int16_t port_ = 0;
  std::wstring settings_ = L"9600,N,8,1";
  std::string received_;
  std::string answer_;  // on its way
  std::int32_t unsent_ = 0;
  std::uint32_t silent_step_ms_ = 50;
  std::int32_t last_code_ = 0;
};

}  // namespace kesp
