// Makes a description for the simulator of the exchanges in a trace.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "console/exchange.h"
#include "console/heard_answers.h"

namespace kesp::console {

// What was heard of the instrument at one place.
struct HeardInstrument {
  std::string place;
  std::string settings;               // of the COM port
  std::vector<std::string> commands;  // in the order in which they were first sent
  std::map<std::string, HeardAnswers> answers;
  std::size_t exchanges = 0;
};

class DeviceFromTrace {
 public:
  void Add(const Exchange& exchange);

  struct Made {
    std::string json;
    std::string summary;               // "3 commands of tcp:127.0.0.1:10001, from 12 exchanges"
    std::vector<std::string> remarks;  // what the trace does not tell, and what was left out
  };
  // Of the place with the most exchanges. Throws std::runtime_error where none can be played.
  Made Make() const;

 private:
  std::string WhyNone() const;

  std::map<std::string, HeardInstrument> instruments_;  // by place and settings
  std::size_t without_command_ = 0;
  std::size_t unfinished_ = 0;
  std::size_t behind_omega_ = 0;
  std::size_t several_ = 0;  // with several commands in one
  std::size_t too_many_ = 0;
};

}  // namespace kesp::console
