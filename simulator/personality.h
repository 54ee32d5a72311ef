// A personality: what a simulated instrument answers to which command, whatever carries the bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "simulator/action.h"
#include "simulator/discovery_answer.h"
#include "simulator/gpib/address.h"
#include "simulator/line_rule.h"

namespace kesp::simulator {

using AnswersByName = std::map<std::string, Answer, std::less<>>;

struct Personality {
  // Ends each command on its way in. Empty only on a bus, where END does it.
  std::string terminator = "\r";
  // On a serial line: the settings at which commands are understood.
  std::optional<LineRule> line;

  // What a discovery datagram is answered with, once for each.
  DiscoveryAnswer discovery = UsualDiscoveryAnswer();

  Answer on_connect;
  AnswersByName commands;
  // Answers to commands that begin so; the longest such name counts.
  AnswersByName prefixes;
  // For commands not named above: those that end in "?", when there is one for them, and the others.
  std::optional<Answer> unknown_query;
  Answer unknown;

  // On a bus.
  std::optional<gpib::Address> address;
  bool end = true;  // whether END goes with the last byte of a reply
  std::int32_t delay_ms = 0;
  bool keeps_replies = false;
};

}  // namespace kesp::simulator
