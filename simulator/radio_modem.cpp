// A radio modem: a serial line to whichever instrument its destination address names.
#include "simulator/radio_modem.h"

#include <system_error>
#include <utility>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

// The silence that must follow "+++"; enough to tell it from text.
constexpr std::chrono::milliseconds kSilenceAfter(50);
constexpr std::chrono::milliseconds kTimeoutUnit(100);
constexpr std::size_t kSequence = 3;
constexpr std::size_t kLongestCommand = 64;
constexpr std::size_t kCommandLength = 4;  // "AT" and two letters
constexpr char kOk[] = "OK\r";
constexpr char kError[] = "ERROR\r";

const ModemRegisters& NewModem() {
  static const ModemRegisters registers = {{"SH", 0x0013A200}, {"SL", 0x40A1B2C3}, {"PL", 4},
                                           {"ID", 0x3332},     {"CH", 0x0C},       {"MY", 0},
                                           {"CT", 0x64},       {"DH", 0},          {"DL", 0}};
  return registers;
}

}  // namespace

RadioModem::RadioModem(RadioModemSetup setup) : setup_(std::move(setup)) {
  setup_.registers.insert(NewModem().begin(), NewModem().end());
}

void RadioModem::Take(std::string_view bytes, Moment now) {
  PassTime(now);
  for (const char byte : bytes) TakeByte(byte, now);
}

std::optional<Deed> RadioModem::Next(Moment now) {
  PassTime(now);
  return TakeFirst(deeds_);
}

void RadioModem::PassTime(Moment now) {
  if (command_mode_ && now >= CommandModeEnd()) LeaveCommandMode("no command in time");
  Hear(now);
  if (pluses_ == kSequence && now >= *last_byte_ + kSilenceAfter) {
    pluses_ = 0;
    command_mode_ = true;
    last_command_ = now;
    deeds_.push_back({"command mode begins", {}});
    Answer(kOk);
  } else if (pluses_ > 0 && pluses_ < kSequence && now >= *last_byte_ + setup_.guard) {
    PassOn(std::string(std::exchange(pluses_, 0), '+'), now);
  }
}

void RadioModem::TakeByte(char byte, Moment now) {
  const bool silent_before = !last_byte_ || now >= *last_byte_ + setup_.guard;
  last_byte_ = now;
  if (command_mode_) {
    TakeCommandByte(byte, now);
    return;
  }
  const bool belongs = pluses_ == 0 ? silent_before : pluses_ < kSequence;
  if (byte == '+' && belongs) {
    ++pluses_;
    return;
  }
  PassOn(std::string(std::exchange(pluses_, 0), '+') + byte, now);
}

void RadioModem::TakeCommandByte(char byte, Moment now) {
  if (byte != '\r') {
    if (command_.size() < kLongestCommand) command_ += byte;
    return;
  }
  last_command_ = now;
  const std::string command = std::exchange(command_, std::string());
  deeds_.push_back({"modem command " + Quoted(command), {}});
  if (command == "ATCN") {
    Answer(kOk);
    LeaveCommandMode("as told");
    return;
  }
  Answer(Execute(command));
}

std::string RadioModem::Execute(const std::string& command) {
  if (command == "ATWR") return WriteRegisters();
  if (command.size() < kCommandLength || command.rfind("AT", 0) != 0) return kError;
  return UseRegister(command.substr(2, 2), command.substr(kCommandLength));
}

std::string RadioModem::WriteRegisters() {
  try {
    setup_.write(setup_.registers);
  } catch (const std::system_error& error) {
    deeds_.push_back({std::string("registers not written: ") + error.what(), {}});
    return kError;
  }
  return kOk;
}

std::string RadioModem::UseRegister(const std::string& name, const std::string& value) {
  const auto found = setup_.registers.find(name);
  if (found == setup_.registers.end()) return kError;
  if (value.empty()) return Hexadecimal(found->second) + "\r";
  const std::optional<std::uint32_t> number = FromHexadecimal(value);
  if (!number) return kError;
  found->second = *number;
  return kOk;
}

void RadioModem::Answer(const std::string& text) {
  switch (setup_.answers) {
    case ModemAnswers::kWhole:
      deeds_.push_back(Saying(text));
      break;
    case ModemAnswers::kNone:
      break;
    case ModemAnswers::kHalfOk:
      deeds_.push_back(Saying(text == kOk ? "O" : text));
      break;
    case ModemAnswers::kNoCarriageReturn:
      deeds_.push_back(Saying(text.substr(0, text.size() - 1)));
      break;
  }
}

void RadioModem::LeaveCommandMode(const std::string& why) {
  command_mode_ = false;
  command_.clear();
  deeds_.push_back({"command mode ends: " + why, {}});
  for (Deed& deed : held_) deeds_.push_back(std::move(deed));
  held_.clear();
}

void RadioModem::PassOn(const std::string& bytes, Moment now) {
  const std::uint32_t address = setup_.registers.at("DL");
  const auto found = setup_.behind.find(address);
  if (found == setup_.behind.end()) {
    deeds_.push_back({"lost " + Quoted(bytes) + ", there is nothing at address " + Hexadecimal(address), {}});
    return;
  }
  found->second->Take(bytes, now);
  Hear(now);
}

void RadioModem::Hear(Moment now) {
  for (const auto& [address, device] : setup_.behind) {
    while (std::optional<Deed> deed = device->Next(now)) {
      if (!deed->event.empty()) deed->event.insert(0, "address " + Hexadecimal(address) + ": ");
      const bool waits = command_mode_ && deed->event.empty();
      (waits ? held_ : deeds_).push_back(std::move(*deed));
    }
  }
}

Moment RadioModem::CommandModeEnd() const {
  return last_command_ + setup_.registers.at("CT") * kTimeoutUnit;
}

std::optional<Moment> RadioModem::Due() const {
  std::optional<Moment> due;
  if (command_mode_) due = CommandModeEnd();
  if (pluses_ > 0) due = *last_byte_ + (pluses_ == kSequence ? kSilenceAfter : setup_.guard);
  for (const auto& [address, device] : setup_.behind) due = Earlier(due, device->Due());
  return due;
}

}  // namespace kesp::simulator
