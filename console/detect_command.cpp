// "kesp detect": looks for an instrument.
#include <nlohmann/json.hpp>
#include <string>

#include "console/commands.h"
#include "console/counted.h"
#include "console/deadline.h"
#include "console/instrument_at.h"
#include "console/line_end.h"

namespace kesp::console {
namespace {

// "9600 baud, *VER … 4 of 10"
std::string ProgressLine(const DetectionStep& step) {
  std::string line = step.where + ", " + step.command + " \u2026 " + std::to_string(step.number);
  if (step.of > 0) line += " of " + std::to_string(step.of);
  return line;
}

std::string Found(const DetectOptions& options, const std::string& address, const std::string& answer) {
  if (!options.json) return address + "  " + answer + "\n";
  const nlohmann::ordered_json found = {{"address", address}, {"answer", answer}};
  return found.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string Tried(int steps) {
  return " (" + Counted(steps, "command") + " tried)\n";
}

// A connection that cannot be made leaves nothing to be tried.
std::string Nobody(const std::string& address, int steps, bool was_time_up) {
  if (steps == 0 && !was_time_up) return "kesp: no connection to " + address + "\n";
  return "kesp: nobody answers at " + address + Tried(steps);
}

}  // namespace

int Run(const DetectOptions& options, Surroundings& around) {
  Console& console = around.console;
  // The library has its own times for a reply here; this one is for the whole search.
  TalkOptions talk = options.talk;
  talk.timeout_ms.reset();
  const auto instrument = InstrumentAt(talk, around);
  bool was_time_up = false;
  const Deadline deadline(around.clock, options.talk.timeout_ms);
  int steps = 0;
  const auto answer =
      instrument->Detect(static_cast<DetectLevel>(options.level), [&](const DetectionStep& step) {
        was_time_up = deadline.IsPast();
        if (console.Interrupted() || was_time_up) return false;
        console.ShowProgress(ProgressLine(step));
        ++steps;
        return true;
      });
  console.ShowProgress("");
  if (answer) {
    console.Write(Found(options, TextOf(instrument->address()), WithoutLineEnd(*answer)));
    return kExitDone;
  }
  if (console.Interrupted()) {
    console.WriteError("kesp: ended by Ctrl-C; nobody had answered at " + options.talk.address +
                       Tried(steps));
    return kExitInterrupted;
  }
  console.WriteError(Nobody(options.talk.address, steps, was_time_up));
  return kExitFailed;
}

}  // namespace kesp::console
