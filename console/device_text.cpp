// The text of a description for the simulator.
#include "console/device_text.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

#include "console/baud_rates.h"
#include "console/hexadecimal.h"
#include "console/trace_bytes.h"

namespace kesp::console {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint32_t kLongestWaitMs = 3'600'000;

std::string_view LineEndOf(std::string_view bytes) {
  const std::size_t last = bytes.find_last_not_of("\r\n");
  return last == std::string_view::npos ? bytes : bytes.substr(last + 1);
}

// Control characters other than the usual ones, and what no code page shows.
bool IsBinary(std::string_view bytes) {
  return std::any_of(bytes.begin(), bytes.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && character != '\r' && character != '\n' && character != '\t') ||
           (byte >= 0x7F && byte < 0xA0);
  });
}

// The line end of most replies; a carriage return where there is none.
std::string ReplyTerminator(const HeardInstrument& instrument) {
  std::map<std::string, std::size_t> counts;
  for (const auto& [command, answers] : instrument.answers) {
    for (const HeardAnswer& answer : answers.InTurn()) {
      if (answer.bytes && answer.is_whole && !IsBinary(*answer.bytes))
        ++counts[std::string(LineEndOf(*answer.bytes))];
    }
  }
  const auto most = std::max_element(counts.begin(), counts.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  return most == counts.end() ? "\r" : most->first;
}

Json SendingOf(const std::string& bytes, const std::string& terminator) {
  if (IsBinary(bytes)) return {{"send_hex", HexadecimalOf(bytes)}};
  const std::string_view end = LineEndOf(bytes);
  Json action = {{"send", TextOfBytes(std::string_view(bytes).substr(0, bytes.size() - end.size()))}};
  if (end != terminator) action["end"] = end;
  return action;
}

Json AnswerOf(const HeardAnswer& answer, const std::string& terminator) {
  Json actions = Json::array();
  const std::uint32_t delay = std::min(answer.MedianDelayMs(), kLongestWaitMs);
  if (delay > 0) actions.push_back({{"wait_ms", delay}});
  if (answer.bytes) actions.push_back(SendingOf(*answer.bytes, terminator));
  if (answer.was_closed) actions.push_back({{"close", true}});
  if (actions.empty()) return nullptr;
  const bool is_plain = actions.size() == 1 && actions[0].size() == 1 && actions[0].contains("send");
  return is_plain ? actions[0]["send"] : actions;
}

Json AnswersOf(const HeardAnswers& heard, const std::string& terminator) {
  const std::vector<HeardAnswer> turns = heard.InTurn();
  if (turns.empty()) return nullptr;
  if (turns.size() == 1) return AnswerOf(turns.front(), terminator);
  Json cycle = Json::array();
  for (const HeardAnswer& turn : turns) cycle.push_back(AnswerOf(turn, terminator));
  return {{"cycle", cycle}};
}

bool IsOneOf(std::string_view text, std::string_view characters) {
  return text.size() == 1 && characters.find(text[0]) != std::string_view::npos;
}

// "9600,N,8,1" as the member "line"; nothing where it is something else.
Json LineOf(std::string_view settings) {
  std::vector<std::string_view> parts;
  while (!settings.empty()) {
    const std::size_t comma = std::min(settings.find(','), settings.size());
    parts.push_back(settings.substr(0, comma));
    settings.remove_prefix(std::min(comma + 1, settings.size()));
  }
  if (parts.size() != 4) return nullptr;
  const auto* const baud = std::find_if(kBaudRates.begin(), kBaudRates.end(),
                                        [&](int rate) { return std::to_string(rate) == parts[0]; });
  const bool is_frame = IsOneOf(parts[1], "NEOMS") && IsOneOf(parts[2], "45678");
  if (baud == kBaudRates.end() || !is_frame) return nullptr;
  Json line = {{"baud", *baud}, {"parity", parts[1]}};
  if (parts[2] != "4") line["data_bits"] = parts[2][0] - '0';
  if (parts[3] == "1" || parts[3] == "2") line["stop_bits"] = parts[3][0] - '0';
  return line;
}

bool HasPart(const HeardInstrument& instrument) {
  return std::any_of(instrument.answers.begin(), instrument.answers.end(), [](const auto& entry) {
    const std::vector<HeardAnswer> turns = entry.second.InTurn();
    return std::any_of(turns.begin(), turns.end(), [](const HeardAnswer& turn) { return !turn.is_whole; });
  });
}

// What the trace does not tell.
void AddRemarks(const HeardInstrument& instrument, std::vector<std::string>& remarks) {
  std::size_t left_out = 0;
  for (const auto& [command, answers] : instrument.answers) left_out += answers.left_out();
  if (left_out > 0)
    remarks.push_back("left out: " + std::to_string(left_out) + " answers, of each command those past 1000");
  if (HasPart(instrument))
    remarks.emplace_back("of some replies the trace tells only a part, or no end; they stand as they are");
  for (const std::string& command : instrument.commands) {
    if (command.ends_with('*')) {
      remarks.push_back("\"" + Readable(command) +
                        R"(" ends in "*", so it stands for all commands that begin so)");
    }
  }
  if (instrument.place.starts_with("com")) {
    remarks.emplace_back(
        "at a COM port, the delay of a reply without a line feed at its end is not told, so it has none");
  }
  if (instrument.place == "gpib") {
    remarks.emplace_back(
        "the trace does not tell the primary address, nor the end of a command: 5 and a line feed stand in "
        "their place; of a reply it holds 50 characters");
  }
}

}  // namespace

std::string DeviceText(const HeardInstrument& instrument, std::vector<std::string>& remarks) {
  const std::string terminator = ReplyTerminator(instrument);
  Json device;
  device["description"] = "Made by kesp from a trace of " + Readable(instrument.place) + ".";
  if (instrument.place == "gpib") device["gpib"] = {{"primary", 5}};
  if (const Json line = LineOf(instrument.settings); !line.is_null()) device["line"] = line;
  device["terminator"] = instrument.place == "gpib" ? "\n" : "\r";
  device["reply_terminator"] = terminator;
  Json& commands = device["commands"] = Json::object();
  for (const std::string& command : instrument.commands) {
    commands[TextOfBytes(command)] = AnswersOf(instrument.answers.at(command), terminator);
  }
  AddRemarks(instrument, remarks);
  constexpr int kIndent = 2;
  return device.dump(kIndent, ' ', true) + "\n";
}

}  // namespace kesp::console
