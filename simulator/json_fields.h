// Strict access to the fields of one JSON object of a personality file.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace kesp::simulator {

// Which whole numbers a field takes.
struct Range {
  std::int64_t least;
  std::int64_t most;
};

// A view of one object and of the place where it stands, written like "/commands/MEAS?/0". Each reading
// member throws PersonalityError, with the place of the field, when the field is missing or not of its type.
class JsonFields {
 public:
  // Throws when `value` is not an object. The value must outlive the view.
  JsonFields(const nlohmann::json& value, std::string place);

  const std::string& place() const { return place_; }
  std::string PlaceOf(std::string_view field) const;

  bool Has(std::string_view field) const;
  // Throws at the first field that is not among these.
  void AllowOnly(std::initializer_list<std::string_view> fields) const;

  const nlohmann::json& Value(std::string_view field) const;
  // The bytes meant by a text, one for each character.
  std::string Text(std::string_view field) const;
  std::string TextOr(std::string_view field, const std::string& otherwise) const;
  // The bytes meant by a text of hexadecimal pairs.
  std::string Hex(std::string_view field) const;
  std::int64_t Whole(std::string_view field, Range range) const;
  std::int64_t WholeOr(std::string_view field, Range range, std::int64_t otherwise) const;
  bool YesOrNoOr(std::string_view field, bool otherwise) const;
  // For fields that only say something by being there: anything but true is refused.
  void RequireTrue(std::string_view field) const;
  // The field "description", when there is one, is a text or a list of texts.
  void CheckDescription() const;

 private:
  const nlohmann::json& value_;
  std::string place_;
};

// The bytes meant by a text at this place; refuses characters that are not single bytes.
std::string TextAt(const std::string& utf8, const std::string& place);

}  // namespace kesp::simulator
