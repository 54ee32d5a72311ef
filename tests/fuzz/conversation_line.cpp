// What each byte lets happen at the serial port.
#include "tests/fuzz/conversation_line.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "serial/line_settings.h"
#include "serial/serial_control_errors.h"

namespace kesp {

namespace {

// How long the looks of a silent line take. Each takes longer, because some time-outs are long.
constexpr std::uint32_t kFirstStepMs = 50;
constexpr std::uint32_t kLastStepMs = 1U << 25;
// What a driver that does not hand out what it has counted costs at the most.
constexpr std::uint32_t kStuckReadMs = 6000;

}  // namespace

class ConversationLine::Control final : public SerialControl {
 public:
  explicit Control(ConversationLine& line) : line_(line) {}

  void SetCommPort(std::int16_t port) override {
    Require(!line_.open_, "the port's number is set while it is closed");
    line_.Called();
    if (port < 1 || port > 256) throw SerialControlFailure(kSerialInvalidPort);
    line_.port_ = port;
  }
  void SetSettings(const std::wstring& settings) override {
    line_.Called();
    if (!ReadLineSettings(settings)) throw SerialControlFailure(kSerialInvalidValue);
    line_.settings_ = settings;
  }
  const std::wstring& Settings() const override { return line_.settings_; }
  void SetHandshaking(SerialHandshaking) override { line_.Called(); }
  bool PortOpen() const override { return line_.open_; }
  void Open() override {
    Require(!line_.open_, "a closed port is opened");
    line_.Called();
    line_.open_ = true;
  }
  void Close() noexcept override {
    line_.open_ = false;
    line_.received_.clear();
    line_.answer_.clear();
    line_.unsent_ = 0;
  }
  std::int32_t InBufferCount() override;
  std::int32_t OutBufferCount() override;
  void ClearInBuffer() override {
    line_.OpenCalled();
    line_.received_.clear();
  }
  void ClearOutBuffer() override {
    line_.OpenCalled();
    line_.silent_step_ms_ = kFirstStepMs;
    line_.watcher_->Clearing();
    line_.unsent_ = 0;
  }
  void SetDTREnable(bool) override { line_.Called(); }
  void SetRTSEnable(bool) override { line_.Called(); }
  void Output(std::string_view bytes) override;
  std::string Input() override;

 private:
  ConversationLine& line_;
};

std::unique_ptr<SerialControl> ConversationLine::MakeControl() {
  return std::make_unique<Control>(*this);
}

std::int32_t ConversationLine::IsCOMPortAvailable(std::int16_t) {
  constexpr std::int32_t kCodes[] = {0, 2, 5, 31};
  const std::uint8_t which = input_.Byte();
  if (which >= 0xF0) throw std::runtime_error("the ports cannot be listed");
  return last_code_ = kCodes[which % 4];
}

void ConversationLine::BeGood(std::string reply) {
  good_ = true;
  good_reply_ = std::move(reply);
  fail_in_ = 0;
  answer_.clear();
}

void ConversationLine::FailCall(int nth, std::int32_t number) {
  fail_in_ = nth;
  fail_number_ = number;
}

void ConversationLine::Called() {
  if (fail_in_ <= 0 || --fail_in_ > 0) return;
  watcher_->Failing();
  throw SerialControlFailure(fail_number_);
}

void ConversationLine::OpenCalled() {
  Called();
  if (open_) return;
  watcher_->Failing();
  throw SerialControlFailure(kSerialPortNotOpen);
}

// Lets time pass, and bytes arrive.
void ConversationLine::Look() {
  if (good_ || !input_.HasMore()) {
    clock_.Advance(good_ ? 5 : std::exchange(silent_step_ms_, std::min(silent_step_ms_ * 2, kLastStepMs)));
    received_ += std::exchange(answer_, {});
    return;
  }
  silent_step_ms_ = kFirstStepMs;
  const std::uint8_t look = input_.Byte();
  if (look < 0x50) {
    clock_.Advance(1 + look);
    if (look % 2 == 0) received_ += std::exchange(answer_, {});
  } else if (look < 0xE0) {
    clock_.Advance(1);
    Receive(look);
  } else {
    clock_.Advance((look - 0xDFU) * 128U);
  }
}

void ConversationLine::Receive(std::uint8_t how) {
  if (!open_) return;
  if (how == 0xDF) {
    // Seldom more than 16 bits can count, because that takes long.
    const std::uint8_t fill = input_.Byte();
    received_.append(fill < 8 ? 40'000 : 300, static_cast<char>(fill));
    return;
  }
  received_ += input_.Bytes(1 + how % 16U);
}

std::int32_t ConversationLine::Control::InBufferCount() {
  line_.watcher_->Counting();
  line_.Look();
  line_.OpenCalled();
  const auto count = static_cast<std::int32_t>(line_.received_.size());
  line_.watcher_->Counted(count);
  return count;
}

std::int32_t ConversationLine::Control::OutBufferCount() {
  line_.clock_.Advance(2);
  line_.OpenCalled();
  // A slow or held up line: now and then one that takes nothing for long.
  if (!line_.good_ && line_.unsent_ > 0 && line_.input_.HasMore()) {
    const std::uint8_t how = line_.input_.Byte();
    line_.clock_.Advance(how < 0x80 ? 0 : (how - 0x7FU) * 16U);
    if (how % 4 == 3)
      line_.unsent_ = how > 0xF0 ? 70'000 : line_.unsent_;
    else
      line_.unsent_ = how % 2 == 0 ? 0 : line_.unsent_ - 1;
  } else {
    line_.unsent_ = 0;
  }
  line_.watcher_->CountedOutput(line_.unsent_);
  return line_.unsent_;
}

void ConversationLine::Control::Output(std::string_view bytes) {
  line_.OpenCalled();
  // What came before a command must not be taken for its reply.
  Require(line_.received_.empty(), "what had been received is dropped before a command");
  line_.silent_step_ms_ = kFirstStepMs;
  line_.watcher_->Writing(bytes);
  line_.unsent_ = static_cast<std::int32_t>(bytes.size());
  if (line_.good_) {
    line_.answer_ = line_.good_reply_;
    return;
  }
  if (!line_.input_.HasMore()) return;
  const std::uint8_t answer = line_.input_.Byte();
  if (answer % 4 == 1) line_.answer_ = "OK\r";
  if (answer % 4 == 2) line_.answer_ = "1A\r\n";
}

std::string ConversationLine::Control::Input() {
  line_.watcher_->Reading();
  line_.Look();
  line_.OpenCalled();
  std::string bytes;
  const bool is_stuck = !line_.good_ && line_.received_.size() == 13;
  if (is_stuck) {
    // Counted, and not handed out.
    line_.clock_.Advance(kStuckReadMs);
    line_.received_.clear();
  } else {
    bytes = std::exchange(line_.received_, {});
  }
  line_.watcher_->Taken(bytes);
  return bytes;
}

}  // namespace kesp
