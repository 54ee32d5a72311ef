// Reads the settings of an instrument's serial line from a personality file.
#include "simulator/line_rule_reader.h"

#include <nlohmann/json.hpp>

#include "simulator/json_fields.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

constexpr Range kBaud{50, 4'000'000};
constexpr Range kDataBits{5, 8};
constexpr Range kStopBits{1, 2};

std::optional<unsigned> Number(const JsonFields& fields, std::string_view name, Range range) {
  if (!fields.Has(name)) return std::nullopt;
  return static_cast<unsigned>(fields.Whole(name, range));
}

}  // namespace

LineRule ReadLineRule(const nlohmann::json& value, const std::string& place) {
  const JsonFields fields(value, place);
  fields.AllowOnly({"baud", "parity", "data_bits", "stop_bits"});
  LineRule rule;
  rule.baud = static_cast<unsigned>(fields.Whole("baud", kBaud));
  if (fields.Has("parity")) {
    const std::string parity = fields.Text("parity");
    if (parity.size() != 1 || std::string("NEOMS").find(parity) == std::string::npos)
      throw PersonalityError(fields.PlaceOf("parity"), "must be N, E, O, M or S");
    rule.parity = parity.front();
  }
  rule.data_bits = Number(fields, "data_bits", kDataBits);
  rule.stop_bits = Number(fields, "stop_bits", kStopBits);
  return rule;
}

}  // namespace kesp::simulator
