// Reads a personality from the JSON text of its file.
#include "tests/instrument/personality_reader.h"

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

#include "tests/instrument/action_reader.h"
#include "tests/instrument/json_fields.h"
#include "tests/instrument/line_rule_reader.h"

namespace kesp::simulator {
namespace {

using nlohmann::json;

// The parser keeps the last of two equal names in silence, which would hide a mistake in a long file.
class DuplicateNames {
 public:
  void On(json::parse_event_t event, const json& parsed) {
    if (event == json::parse_event_t::object_start) names_.emplace_back();
    if (event == json::parse_event_t::object_end) names_.pop_back();
    if (event == json::parse_event_t::key && !names_.back().insert(parsed.get<std::string>()).second)
      throw PersonalityError("\"" + parsed.get<std::string>() + "\"", "is given twice in one object");
  }

 private:
  std::vector<std::set<std::string>> names_;
};

json Parse(const std::string& text) {
  DuplicateNames names;
  const auto watch = [&names](int /*depth*/, json::parse_event_t event, json& parsed) {
    names.On(event, parsed);
    return true;
  };
  try {
    return json::parse(text, watch);
  } catch (const json::parse_error& error) {
    // Of "[json.exception.parse_error.101] parse error at line 1, ..." the user needs what follows the
    // bracket.
    const std::string what = error.what();
    throw PersonalityError("not JSON", what.substr(what.find("] ") + 2));
  }
}

void CheckDescription(const JsonFields& file) {
  if (!file.Has("description")) return;
  const json& value = file.Value("description");
  bool good = value.is_string() || value.is_array();
  if (value.is_array()) {
    for (const json& line : value) good = good && line.is_string();
  }
  if (!good) throw PersonalityError(file.PlaceOf("description"), "must be a text or a list of texts");
}

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
  const json root = Parse(json_text);
  const JsonFields file(root, "");
  file.AllowOnly({"description", "terminator", "reply_terminator", "line", "on_connect", "commands",
                  "default_query", "default"});
  CheckDescription(file);

  Personality personality;
  personality.terminator = file.TextOr("terminator", "\r");
  if (personality.terminator.empty()) throw PersonalityError(file.PlaceOf("terminator"), "must not be empty");
  if (file.Has("line")) personality.line = ReadLineRule(file.Value("line"), file.PlaceOf("line"));
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
  std::ifstream stream(file, std::ios::binary);
  // A folder opens like a file, and throws at the first byte.
  if (!stream || std::filesystem::is_directory(file)) throw PersonalityError(file.string(), "cannot be read");
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  try {
    return ReadPersonality(text);
  } catch (const PersonalityError& error) {
    throw PersonalityError(file.string(), error.what());
  }
}

}  // namespace kesp::simulator
