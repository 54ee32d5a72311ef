// "kesp query": commands and their replies.
#include <nlohmann/json.hpp>
#include <set>

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
#include "console/utf8_character.h"

namespace kesp::console {
namespace {

constexpr int kUntilInterrupted = 0;
// What the library reads of a reply on the GPIB.
constexpr std::size_t kLongestGpibReply = 50;

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
    if (options.gap_ms && !options.hex && options.binary.empty())
      throw UsageError("a text reply ends with its end character: --gap is for --hex and --binary");
    Tuning tuning;
    tuning.gap_ms = options.gap_ms;
    tuning.crlf_as_is = options.crlf_as_is;
    tuning.keep_open = (options.repeat && options.repeat != 1) || options.commands.size() > 1;
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
      if (reply.failure) {
        // The replies that a table has got are not lost.
        if (&command != &options_.commands.front()) output->EndRound();
        throw LibraryError(*reply.failure);
      }
      TellOfLoneReturn();
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
    console_.SetOnInterrupt(Console::OnInterrupt::kEnd);
    PartFile file(options_.binary);
    std::string bytes;
    for (const std::string& command : options_.commands) {
      // What Ctrl-C or a failure leaves of it.
      if (!bytes.empty()) file.Keep(bytes);
      bytes += BytesOf(command, file, bytes);
    }
    file.Complete(bytes);
    if (options_.json) console_.Write(Saved(bytes.size()) + "\n");
    return kExitDone;
  }

 private:
  std::string BytesOf(const std::string& command, PartFile& file, const std::string& before) {
    try {
      return instrument_->QueryBinary(command);
    } catch (const LibraryError&) {
      if (!before.empty()) console_.WriteError("kesp: " + file.KeepAndTell(before) + "\n");
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
      if (!reply.failure) {
        TellOfLoneReturn();
        continue;
      }
      ++failed_;
      console_.WriteError(std::string("kesp: ").append(time).append(" ").append(command).append(": ").append(
                              FailureText(*reply.failure)) +
                          "\n");
      TellHint(reply.failure->hint);
    }
    output.EndRound();
  }

  void ShowProgress(int done) {
    std::string text = std::to_string(done);
    if (options_.repeat != kUntilInterrupted) text += " of " + std::to_string(*options_.repeat);
    if (failed_ > 0) text += ", " + std::to_string(failed_) + " failed";
    console_.ShowProgress(text);
  }

  void WarnOfCut(const std::string& text) {
    if (CharactersIn(text) < kLongestGpibReply) return;
    console_.WriteError("kesp: the library reads 50 characters of a reply on the GPIB; there may be more\n");
  }

  // Each once, however many rounds there are.
  void TellHint(const std::string& hint) {
    if (!hint.empty() && told_hints_.insert(hint).second) console_.WriteError("  " + hint + "\n");
  }

  void TellOfLoneReturn() {
    const std::string hint = LoneReturnHint(address_, options_.talk.timeout_ms, instrument_->waited());
    if (!hint.empty() && told_hints_.insert(hint).second) console_.WriteError("kesp: " + hint + "\n");
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
  std::set<std::string> told_hints_;
};

}  // namespace

int Run(const QueryOptions& options, Surroundings& around) {
  Querying querying(options, around);
  if (!options.binary.empty()) return querying.IntoFile();
  return options.repeat ? querying.Repeatedly() : querying.Once();
}

}  // namespace kesp::console
