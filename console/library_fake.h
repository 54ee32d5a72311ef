// A library whose one instrument a test writes the part of.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "console/library.h"

namespace kesp::console {

class LibraryFake : public Library {
 public:
  std::unique_ptr<Instrument> At(const Address& address, const Tuning& tuning) override;
  std::vector<FoundInstrument> Discover(const std::string& trace, const OnDetectionStep& on_step) override;

  // What a command is answered with: one after the other, the last one again and again. A command without an
  // answer ends with cfrTimeout, but not Update.
  void Answer(const std::string& cmd, const std::string& reply) { answers_[cmd].push_back(reply); }
  void Fail(const std::string& cmd, const LibraryError& error) { answers_[cmd].push_back(error); }
  // For the instrument: the next answer of that command.
  bool HasAnswer(const std::string& cmd) const { return answers_.contains(cmd); }
  std::string Next(const std::string& cmd);

  // "At com3", "Query *IDN?", "QueryBinary DUMP", "Update *RST", "Detect 3", "Download DUMP", "Edit",
  // "SetTimeout 5000", "Discover".
  std::vector<std::string> calls;
  std::vector<Tuning> tunings;  // of each At
  std::optional<LibraryError> at_fails;
  std::function<void()> set_timeout_fails;  // throws
  std::function<void()> on_exchange;  // in each Query, QueryBinary and Update: to let time pass, for example

  std::optional<std::chrono::milliseconds> waited;  // for the reply of each Query

  std::vector<DetectionStep> steps;             // of Detect and Discover
  std::optional<std::string> detected;          // the answer of Detect
  std::optional<Address> found_at;              // the address after Detect or Edit
  std::optional<LibraryError> detection_fails;  // after the steps; of Discover, too
  std::vector<FoundInstrument> found;

  std::vector<std::int64_t> transfer_steps;
  std::string transfer;                        // the bytes of Download, also when it is aborted or fails
  std::optional<LibraryError> transfer_fails;  // after the steps; thrown when there are no bytes
  bool confirmed = true;                       // what Edit returns
  bool aborted = false;                        // a step was answered with false

 private:
  std::map<std::string, std::deque<std::variant<std::string, LibraryError>>> answers_;
};

}  // namespace kesp::console
