// Reads a personality from the JSON text of its file.
#include "simulator/personality_reader.h"

#include <nlohmann/json.hpp>

#include "simulator/action_reader.h"
#include "simulator/discovery_reader.h"
#include "simulator/json_fields.h"
#include "simulator/json_file.h"
#include "simulator/line_rule_reader.h"

namespace kesp::simulator {
namespace {

using nlohmann::json;

void ReadCommands(const JsonFields& file, const std::string& reply_terminator, Personality& personality) {
  const JsonFields commands(file.Value("commands"), file.PlaceOf("commands"));
  for (const auto& item : file.Value("commands").items()) {
    const std::string place = commands.PlaceOf(item.key());
    std::string name = TextAt(item.key(), place);
    if (name.find(personality.terminator) != std::string::npos)
      throw PersonalityError(place, "holds the terminator, so that it can never be received");
    const Answer answer = ReadAnswer(item.value(), place, reply_terminator);
    if (!name.empty() && name.back() == '*') {
      name.pop_back();
      personality.prefixes[name] = answer;
    } else {
      personality.commands[name] = answer;
    }
  }
}

}  // namespace

Personality ReadPersonality(const std::string& json_text) {
  return ReadPersonality(ParseJson(json_text), "");
}

Personality ReadPersonality(const json& value, const std::string& place) {
  const JsonFields file(value, place);
  file.AllowOnly({"description", "terminator", "reply_terminator", "line", "discovery", "on_connect",
                  "commands", "default_query", "default"});
  file.CheckDescription();

  Personality personality;
  personality.terminator = file.TextOr("terminator", "\r");
  if (personality.terminator.empty()) throw PersonalityError(file.PlaceOf("terminator"), "must not be empty");
  if (file.Has("line")) personality.line = ReadLineRule(file.Value("line"), file.PlaceOf("line"));
  if (file.Has("discovery"))
    personality.discovery = ReadDiscoveryAnswer(file.Value("discovery"), file.PlaceOf("discovery"));
  const std::string reply_terminator = file.TextOr("reply_terminator", "\r");

  const auto answer = [&](const char* field, const Answer& otherwise) {
    return file.Has(field) ? ReadAnswer(file.Value(field), file.PlaceOf(field), reply_terminator) : otherwise;
  };
  personality.on_connect = answer("on_connect", personality.on_connect);
  personality.unknown = answer("default", personality.unknown);
  personality.unknown_query = answer("default_query", personality.unknown);
  if (file.Has("commands")) ReadCommands(file, reply_terminator, personality);
  return personality;
}

Personality LoadPersonality(const std::filesystem::path& file) {
  const std::string text = ContentsOf(file);
  try {
    return ReadPersonality(text);
  } catch (const PersonalityError& error) {
    throw PersonalityError(file.string(), error.what());
  }
}

}  // namespace kesp::simulator
