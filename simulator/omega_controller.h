// A controller with an address and block checks, like those that share one line.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/device.h"

namespace kesp::simulator {

// Takes two kinds of frames, where AA is the address with each digit doubled ("01" is "0011"):
//   read   EOT AA command ENQ
//   write  EOT AA STX command value ETX check
// The block check is the exclusive or of all bytes of command, value and ETX. A carriage return after a frame
// is swallowed. Replies end with CR LF:
//   STX command value ETX check   the value of a read
//   EOT                           a read or write of a value that there is not
//   ACK, NAK                      a write that was taken, or had a wrong block check
// What is no frame, or has another address, is passed over in silence.
class OmegaController : public Device {
 public:
  using Values = std::map<std::string, std::string>;
  // Whether the block checks of its replies are right, or spoilt as on a noisy line.
  enum class Checks { kRight, kWrong };

  // address: digits. values: by the command that reads and writes them; in a write, the longest command with
  // which the block begins counts.
  OmegaController(std::string_view address, Values values, LineRule line, Checks checks = Checks::kRight);

  void Take(std::string_view bytes, Moment now) override;
  std::optional<Deed> Next(Moment now) override;
  std::optional<LineRule> Line() const override { return line_; }

 private:
  std::string Answer(char byte);
  std::string Read(const std::string& command) const;
  std::string Write(const std::string& block, char check);

  const std::string address_;  // with its digits doubled
  const LineRule line_;
  const Checks checks_;
  Values values_;
  // The frame from its EOT on; empty between frames.
  std::string frame_;
  // What it has to say.
  std::string replies_;
};

// The block check of these bytes, which begin after STX and end with ETX.
char BlockCheck(std::string_view bytes);

}  // namespace kesp::simulator
