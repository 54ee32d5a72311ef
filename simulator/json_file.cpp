// JSON texts and files, read more strictly than the parser does by itself.
#include "simulator/json_file.h"

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "simulator/personality_error.h"

namespace kesp::simulator {

using nlohmann::json;

namespace {

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

}  // namespace

json ParseJson(const std::string& text) {
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

std::string ContentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  // A folder opens like a file, and throws at the first byte.
  if (!stream || std::filesystem::is_directory(file)) throw PersonalityError(file.string(), "cannot be read");
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace kesp::simulator
