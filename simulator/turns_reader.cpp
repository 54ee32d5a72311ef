// Reads what is either one list of actions or several that are used in turn.
#include "simulator/turns_reader.h"

#include <nlohmann/json.hpp>

#include "simulator/json_fields.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

void ReadOne(const nlohmann::json& value, const std::string& place, const ListReader& read_list) {
  if (!value.is_array()) throw PersonalityError(place, "must be a list of actions");
  read_list(value, place);
}

}  // namespace

void ReadTurns(const nlohmann::json& value, const std::string& place, const ListReader& read_list) {
  if (!value.is_object()) return ReadOne(value, place, read_list);
  const JsonFields fields(value, place);
  fields.AllowOnly({"cycle"});
  const nlohmann::json& turns = fields.Value("cycle");
  const std::string cycle_place = fields.PlaceOf("cycle");
  if (!turns.is_array() || turns.empty())
    throw PersonalityError(cycle_place, "must be a list of one or more lists of actions");
  for (std::size_t i = 0; i < turns.size(); ++i)
    ReadOne(turns[i], cycle_place + "/" + std::to_string(i), read_list);
}

}  // namespace kesp::simulator
