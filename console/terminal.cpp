// The loop of a conversation.
#include "console/terminal.h"

#include <cstdio>
#include <system_error>

#include "console/device_address.h"
#include "console/duration.h"
#include "console/failure_text.h"
#include "console/hexadecimal.h"
#include "console/hint.h"
#include "console/instrument_at.h"
#include "console/line_end.h"

namespace kesp::console {
namespace {

using Kind = TerminalLine::Kind;
using OnInterrupt = Console::OnInterrupt;

constexpr char kHelp[] =
    "*IDN?          sends *IDN? and shows the reply\n"
    "::MEAS?        sends :MEAS?, since one colon is for the words below\n"
    ":send *RST     sends *RST, which is not answered\n"
    ":hex           shows replies as bytes, and again as text\n"
    ":timeout 5s    waits so long for a reply\n"
    ":log FILE      writes what is said into a file, too; :log alone ends that\n"
    ":quit          leaves, as Ctrl-C does\n";

// Ctrl-C ends the program while this lives: the library cannot be called back from a wait for a reply, nor
// can a wait for a line that another program is to write. At the prompt it only ends the line.
class EndsAtOnce {
 public:
  explicit EndsAtOnce(Console& console) : console_(console) { console_.SetOnInterrupt(OnInterrupt::kEnd); }
  ~EndsAtOnce() {
    if (console_.IsTypedAt()) console_.SetOnInterrupt(OnInterrupt::kNote);
  }
  EndsAtOnce(const EndsAtOnce&) = delete;
  EndsAtOnce& operator=(const EndsAtOnce&) = delete;

 private:
  Console& console_;
};

// "14:05:09.123" of "2026-11-22T14:05:09.123"
std::string TimeOfDay(const std::string& time) {
  return time.substr(time.find('T') + 1);
}

std::string InMilliseconds(std::chrono::microseconds duration) {
  char text[32];
  std::snprintf(text, sizeof text, "%8.1f ms", static_cast<double>(duration.count()) / 1000);
  return text;
}

std::unique_ptr<Instrument> InstrumentOf(const TerminalOptions& options, Surroundings& around) {
  Tuning tuning;
  tuning.gap_ms = options.gap_ms;
  // From line to line; only a query for bytes opens the port anew.
  tuning.keep_open = true;
  return InstrumentAt(options.talk, around, tuning);
}

}  // namespace

Terminal::Terminal(const TerminalOptions& options, Surroundings& around)
    : around_(around),
      address_(ParseDeviceAddress(options.talk.address)),
      prompt_(TextOf(address_) + "> "),
      timeout_ms_(options.talk.timeout_ms),
      instrument_(InstrumentOf(options, around)) {}

bool Terminal::Run() {
  if (around_.console.IsTypedAt()) {
    around_.console.WriteError(":help lists the words of the terminal, :quit leaves\n");
  } else {
    around_.console.SetOnInterrupt(OnInterrupt::kEnd);
  }
  while (const auto text = around_.console.ReadLine(prompt_)) {
    const TerminalLine line = ReadTerminalLine(*text);
    if (line.kind == Kind::kQuit) break;
    try {
      Obey(line);
    } catch (const std::system_error&) {
      throw;  // nobody sees the replies any more
    } catch (const std::runtime_error& error) {
      Fail(error.what());
    }
  }
  return !failed_;
}

void Terminal::Obey(const TerminalLine& line) {
  switch (line.kind) {
    case Kind::kNothing:
    case Kind::kQuit:
      break;
    case Kind::kQuery:
    case Kind::kSend:
      return Exchange(line);
    case Kind::kHex:
      hex_ = !hex_;
      around_.console.WriteError(hex_ ? "replies are shown as bytes\n" : "replies are shown as text\n");
      break;
    case Kind::kTimeout:
      return SetTimeout(line.text);
    case Kind::kLog:
      return SetLog(line.text);
    case Kind::kHelp:
      return around_.console.WriteError(kHelp);
    case Kind::kUnknown:
      Fail("\"" + line.text +
           "\" is not a word of the terminal, which :help lists; to send it, write \":" + line.text + "\"");
  }
}

void Terminal::Exchange(const TerminalLine& line) {
  Note(around_.clock.LocalTime(), '>', line.text);
  const auto start = around_.clock.Now();
  std::string said;
  std::string failure;
  std::string hint;
  try {
    said = Said(line);
    hint = LoneReturnHint(address_, timeout_ms_, instrument_->waited());
  } catch (const LibraryError& error) {
    failure = FailureText(error);
    hint = HintFor(error, address_);
  }
  const std::string duration = InMilliseconds(around_.clock.Now() - start);
  const std::string time = around_.clock.LocalTime();
  const std::string stamp = TimeOfDay(time) + "  " + duration + "  ";
  if (failure.empty()) {
    around_.console.Write(stamp + said + "\n");
  } else {
    Fail(stamp + failure);
  }
  Help(hint);
  Note(time, failure.empty() ? '<' : '!', failure.empty() ? said : failure);
}

std::string Terminal::Said(const TerminalLine& line) {
  const EndsAtOnce ends(around_.console);
  if (line.kind == Kind::kSend) {
    instrument_->Update(line.text);
    return "sent";
  }
  if (hex_) return HexadecimalOf(instrument_->QueryBinary(line.text));
  return WithoutLineEnd(instrument_->Query(line.text));
}

void Terminal::SetTimeout(const std::string& duration) {
  const auto milliseconds = ReadDuration(duration);
  if (!milliseconds) return Fail("\"" + duration + "\" is not a time such as 500ms, 5000 or 2s");
  instrument_->SetTimeout(*milliseconds);
  timeout_ms_ = milliseconds;
}

void Terminal::SetLog(const std::string& name) {
  name.empty() ? log_.End() : log_.Begin(name);
}

void Terminal::Note(const std::string& time, char sign, const std::string& text) {
  try {
    log_.Note(time, sign, text);
  } catch (const std::runtime_error& error) {
    Fail(error.what());
  }
}

void Terminal::Fail(const std::string& text) {
  failed_ = true;
  around_.console.WriteError(text + "\n");
}

void Terminal::Help(const std::string& hint) {
  if (!hint.empty()) around_.console.WriteError("  " + hint + "\n");
}

}  // namespace kesp::console
