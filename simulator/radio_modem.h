// A radio modem: a serial line to whichever instrument its destination address names.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/device.h"

namespace kesp::simulator {

// How the modem answers in command mode.
enum class ModemAnswers { kWhole, kNone, kHalfOk, kNoCarriageReturn };

using ModemRegisters = std::map<std::string, std::uint32_t>;

struct RadioModemSetup {
  std::chrono::milliseconds guard{1000};
  ModemAnswers answers = ModemAnswers::kWhole;
  // By their names of two letters; those that are not given have the values of a new modem.
  ModemRegisters registers;
  // Called by the command that writes all registers to the memory that outlasts a loss of power. What it
  // throws as std::system_error is the modem's ERROR.
  std::function<void(const ModemRegisters&)> write = [](const ModemRegisters&) {};
  std::map<std::uint32_t, std::unique_ptr<Device>> behind;
  std::optional<LineRule> line;
};

// Bytes go to the instrument whose address is in the register DL, and what any instrument sends goes to the
// client.
// "+++" with the guard time of silence before and a short silence after it starts command mode, in which
// lines that end with CR are commands: AT, two letters and a hexadecimal value or none. ATCN ends it, and so
// does a time without a command, CT times 100 ms. What the instruments send meanwhile is delivered after it.
class RadioModem : public Device {
 public:
  explicit RadioModem(RadioModemSetup setup);

  void Take(std::string_view bytes, Moment now) override;
  std::optional<Deed> Next(Moment now) override;
  std::optional<Moment> Due() const override;
  std::optional<LineRule> Line() const override { return setup_.line; }

 private:
  void PassTime(Moment now);
  void TakeByte(char byte, Moment now);
  void TakeCommandByte(char byte, Moment now);
  std::string Execute(const std::string& command);
  std::string WriteRegisters();
  std::string UseRegister(const std::string& name, const std::string& value);
  void Answer(const std::string& text);
  void LeaveCommandMode(const std::string& why);
  void PassOn(const std::string& bytes, Moment now);
  // Takes what the instruments do.
  void Hear(Moment now);
  Moment CommandModeEnd() const;

  RadioModemSetup setup_;
  bool command_mode_ = false;
  std::string command_;
  Moment last_command_{0};
  // How many bytes of "+++" have come, and when the last byte came, if any.
  std::size_t pluses_ = 0;
  std::optional<Moment> last_byte_;
  std::deque<Deed> deeds_;
  // What instruments sent during command mode.
  std::deque<Deed> held_;
};

}  // namespace kesp::simulator
