// What a line that was typed at the terminal means.
#include "console/terminal_line.h"

#include <gtest/gtest.h>

#include <ostream>
#include <utility>

namespace kesp::console {

void PrintTo(const TerminalLine& line, std::ostream* stream) {
  *stream << static_cast<int>(line.kind) << " \"" << line.text << "\"";
}

namespace {

using Kind = TerminalLine::Kind;

TEST(ReadTerminalLine, CommandsAndWords) {
  const std::pair<const char*, TerminalLine> cases[] = {
      {"", {}},
      {" \t", {}},
      {"*IDN?", {Kind::kQuery, "*IDN?"}},
      {"  SL 100 \r", {Kind::kQuery, "SL 100"}},
      {"::MEAS:VOLT?", {Kind::kQuery, ":MEAS:VOLT?"}},
      {":send *RST", {Kind::kSend, "*RST"}},
      {":send :OUTP ON", {Kind::kSend, ":OUTP ON"}},
      {":send", {Kind::kSend, ""}},
      {":HEX", {Kind::kHex, ""}},
      {":timeout\t5000", {Kind::kTimeout, "5000"}},
      {":log  C:\\my talks\\a.txt ", {Kind::kLog, "C:\\my talks\\a.txt"}},
      {":help", {Kind::kHelp, ""}},
      {":quit", {Kind::kQuit, ""}},
      {":MEAS:VOLT? 1", {Kind::kUnknown, ":MEAS:VOLT?"}},
      {":", {Kind::kUnknown, ":"}},
      {":sendx", {Kind::kUnknown, ":sendx"}},
  };
  for (const auto& [text, line] : cases) EXPECT_EQ(ReadTerminalLine(text), line) << text;
}

}  // namespace
}  // namespace kesp::console
