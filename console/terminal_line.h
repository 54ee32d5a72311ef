// What a line that was typed at the terminal means.
#pragma once

#include <string>
#include <string_view>

namespace kesp::console {

struct TerminalLine {
  enum class Kind { kNothing, kQuery, kSend, kHex, kTimeout, kLog, kHelp, kQuit, kUnknown };
  Kind kind = Kind::kNothing;
  // The command, or what stands behind the word: "5000" of ":timeout 5000". The word itself of kUnknown.
  std::string text;
  bool operator==(const TerminalLine&) const = default;
};

// A line without a colon in front is a command that is answered; so is one with two, without the first.
TerminalLine ReadTerminalLine(std::string_view line);

}  // namespace kesp::console
