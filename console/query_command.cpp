// "kesp query": commands and their replies.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "console/commands.h"
#include "console/device_address.h"
#include "console/failure_text.h"
#include "console/hexadecimal.h"
#include "console/hint.h"
#include "console/instrument_at.h"
#include "console/part_file.h"
#include "console/query_output.h"
#include "console/rounds.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

constexpr int kUntilInterrupted = 0;
// What the library reads of a reply on the GPIB.
constexpr std::ptrdiff_t kLongestGpibReply = 50;

class Querying {
 public:
  Querying(const QueryOptions& options, Surroundings& around)
      : options_(options),
        console_(around.console),
        clock_(around.clock),
        address_(ParseDeviceAddress(options.talk.address)),
        on_gpib_(std::holds_alternative<GpibAddress>(address_)) {
    if (on_gpib_ && (options.hex || !options.binary.empty()))
      throw UsageError("on the GPIB the library reads text only: leave out --hex and --binary");
    Tuning tuning;
    tuning.crlf_as_is = options.crlf_as_is;
    tuning.keep_open = options.repeat != 1 || options.commands.size() > 1;
    instrument_ = InstrumentAt(options.talk, around, tuning);
  }

  // Each command once. What fails ends it.
  int Once() {
    console_.SetOnInterrupt(Console::OnInterrupt::kEnd);
    const auto output = MakeQueryOutput(options_, console_);
    const std::string time = clock_.LocalTime();
    for (const std::string& command : options_.commands) {
      const Reply reply = Ask(command, time);
      output->Add(reply);
      if (reply.failure) throw LibraryError(*reply.failure);
      if (!options_.hex) TellOfLoneReturn(reply);
    }
    output->EndRound();
    return kExitDone;
  }

  // What fails is told, and the rounds go on.
  int Repeatedly() {
    const auto output = MakeQueryOutput(options_, console_);
    Rounds rounds(clock_, std::chrono::milliseconds(options_.every_ms));
    int done = 0;
    while (!console_.Interrupted()) {
      Round(*output);
      ++done;
      ShowProgress(done);
      if (done == options_.repeat) break;
      rounds.AwaitNext();
    }
    console_.ShowProgress("");
    if (options_.repeat != kUntilInterrupted && done < options_.repeat) return kExitInterrupted;
    return failed_ > 0 ? kExitFailed : kExitDone;
  }

  int IntoFile() {
    PartFile file(options_.binary);
    std::string bytes;
    for (const std::string& command : options_.commands) {
      bytes += BytesOf(command);
      if (console_.Interrupted() && &command != &options_.commands.back()) return kExitInterrupted;
    }
    file.Complete(bytes);
    if (options_.json) console_.Write(Saved(bytes.size()) + "\n");
    return kExitDone;
  }

 private:
  std::string BytesOf(const std::string& command) {
    try {
      return instrument_->QueryBinary(command);
    } catch (LibraryError& error) {
      error.hint = HintFor(error, address_);
      throw;
    }
  }

  Reply Ask(const std::string& command, const std::string& time) {
    Reply reply;
    reply.time = time;
    reply.command = command;
    const auto begin = clock_.Now();
    try {
      reply.text =
          options_.hex ? HexadecimalOf(instrument_->QueryBinary(command)) : instrument_->Query(command);
    } catch (const LibraryError& error) {
      reply.failure = error;
      reply.failure->hint = HintFor(error, address_);
    }
    reply.seconds = std::chrono::duration<double>(clock_.Now() - begin).count();
    if (on_gpib_) WarnOfCut(reply.text);
    return reply;
  }

  void Round(QueryOutput& output) {
    const std::string time = clock_.LocalTime();
    for (const std::string& command : options_.commands) {
      const Reply reply = Ask(command, time);
      output.Add(reply);
      if (!reply.failure) continue;
      ++failed_;
      console_.WriteError("kesp: " + time + " " + command + ": " + FailureText(*reply.failure) + "\n");
    }
    output.EndRound();
  }

  void ShowProgress(int done) {
    std::string text = std::to_string(done);
    if (options_.repeat != kUntilInterrupted) text += " of " + std::to_string(options_.repeat);
    if (failed_ > 0) text += ", " + std::to_string(failed_) + " failed";
    console_.ShowProgress(text);
  }

  void WarnOfCut(const std::string& text) {
    const auto is_first_of_character = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    if (std::count_if(text.begin(), text.end(), is_first_of_character) < kLongestGpibReply) return;
    console_.WriteError("kesp: the library reads 50 characters of a reply on the GPIB; there may be more\n");
  }

  // The library waits for a line feed that does not come, and takes what is there when the time is up.
  void TellOfLoneReturn(const Reply& reply) {
    const std::string hint = LoneReturnHint(address_, options_.talk.timeout_ms, reply.seconds);
    if (!hint.empty()) console_.WriteError("kesp: " + hint + "\n");
  }

  std::string Saved(std::size_t size) const {
    nlohmann::ordered_json object = {{"address", options_.talk.address},
                                     {"commands", options_.commands},
                                     {"file", options_.binary},
                                     {"bytes", size}};
    return object.dump();
  }

  const QueryOptions& options_;
  Console& console_;
  Clock& clock_;
  Address address_;
  bool on_gpib_;
  std::unique_ptr<Instrument> instrument_;
  int failed_ = 0;
};

}  // namespace

int Run(const QueryOptions& options, Surroundings& around) {
  Querying querying(options, around);
  if (!options.binary.empty()) return querying.IntoFile();
  return options.repeat == 1 ? querying.Once() : querying.Repeatedly();
}

}  // namespace kesp::console
