// A personality: what a simulated instrument answers to which command, whatever carries the bytes.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "simulator/action.h"
#include "simulator/discovery_answer.h"
#include "simulator/line_rule.h"

namespace kesp::simulator {

using AnswersByName = std::map<std::string, Answer, std::less<>>;

struct Personality {
  // Ends each command on its way in; never empty.
  std::string terminator = "\r";
  // On a serial line: the settings at which commands are understood.
  std::optional<LineRule> line;

  // What a discovery datagram is answered with, once for each.
  DiscoveryAnswer discovery = UsualDiscoveryAnswer();

  Answer on_connect;
  AnswersByName commands;
  // Answers to commands that begin so; the longest such name counts.
  AnswersByName prefixes;
  // For commands not named above: those that end in "?", and the others.
  Answer unknown_query;
  Answer unknown;
};

// The personality played when no file is given: a small instrument that knows "*IDN?", "*VER", "t" and
// "MEAS?", refuses every other query with an error text and takes everything else without an answer.
Personality BuiltInPersonality();

}  // namespace kesp::simulator
