// Strict access to the fields of one JSON object of a personality file.
#include "simulator/json_fields.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "simulator/bytes_text.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {

JsonFields::JsonFields(const nlohmann::json& value, std::string place)
    : value_(value), place_(std::move(place)) {
  if (!value_.is_object()) throw PersonalityError(place_.empty() ? "/" : place_, "must be an object");
}

std::string JsonFields::PlaceOf(std::string_view field) const {
  return place_ + "/" + std::string(field);
}

bool JsonFields::Has(std::string_view field) const {
  return value_.contains(std::string(field));
}

void JsonFields::AllowOnly(std::initializer_list<std::string_view> fields) const {
  for (const auto& item : value_.items()) {
    if (std::find(fields.begin(), fields.end(), item.key()) == fields.end())
      throw PersonalityError(PlaceOf(item.key()), "is not a known field");
  }
}

const nlohmann::json& JsonFields::Value(std::string_view field) const {
  const auto found = value_.find(std::string(field));
  if (found == value_.end()) throw PersonalityError(PlaceOf(field), "is missing");
  return *found;
}

std::string JsonFields::Text(std::string_view field) const {
  const nlohmann::json& value = Value(field);
  if (!value.is_string()) throw PersonalityError(PlaceOf(field), "must be a text");
  return TextAt(value.get_ref<const std::string&>(), PlaceOf(field));
}

std::string JsonFields::TextOr(std::string_view field, const std::string& otherwise) const {
  return Has(field) ? Text(field) : otherwise;
}

std::string JsonFields::Hex(std::string_view field) const {
  const std::optional<std::string> bytes = BytesFromHex(Text(field));
  if (!bytes)
    throw PersonalityError(PlaceOf(field), "must be pairs of hexadecimal digits, for example \"00 FF\"");
  return *bytes;
}

std::int64_t JsonFields::Whole(std::string_view field, Range range) const {
  const nlohmann::json& value = Value(field);
  // A number past the signed range would come back negative; the parser marks it as unsigned only.
  const bool fits = value.is_number_integer() &&
                    (!value.is_number_unsigned() || value.get<std::uint64_t>() <= std::uint64_t{INT64_MAX});
  const std::int64_t number = fits ? value.get<std::int64_t>() : 0;
  if (!fits || number < range.least || number > range.most) {
    throw PersonalityError(PlaceOf(field), "must be a whole number from " + std::to_string(range.least) +
                                               " to " + std::to_string(range.most));
  }
  return number;
}

std::int64_t JsonFields::WholeOr(std::string_view field, Range range, std::int64_t otherwise) const {
  return Has(field) ? Whole(field, range) : otherwise;
}

bool JsonFields::YesOrNoOr(std::string_view field, bool otherwise) const {
  if (!Has(field)) return otherwise;
  const nlohmann::json& value = Value(field);
  if (!value.is_boolean()) throw PersonalityError(PlaceOf(field), "must be true or false");
  return value.get<bool>();
}

void JsonFields::RequireTrue(std::string_view field) const {
  const nlohmann::json& value = Value(field);
  if (!value.is_boolean() || !value.get<bool>())
    throw PersonalityError(PlaceOf(field), "must be true, or be left out");
}

void JsonFields::CheckDescription() const {
  if (!Has("description")) return;
  const nlohmann::json& value = Value("description");
  bool good = value.is_string() || value.is_array();
  if (value.is_array()) {
    for (const nlohmann::json& line : value) good = good && line.is_string();
  }
  if (!good) throw PersonalityError(PlaceOf("description"), "must be a text or a list of texts");
}

std::string TextAt(const std::string& utf8, const std::string& place) {
  const std::optional<std::string> bytes = BytesFromText(utf8);
  if (!bytes)
    throw PersonalityError(place, "may only hold characters from \\u0000 to \\u00FF (one byte each)");
  return *bytes;
}

}  // namespace kesp::simulator
