// JSON values that know the lines on which they stand.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/problems.h"

namespace kesp::simulator {

struct Value {
  // kWhole: a number that fits std::int64_t. kFraction: any other number.
  enum class Kind { kNull, kYesNo, kWhole, kFraction, kText, kList, kObject };

  Kind kind = Kind::kNull;
  std::size_t line = 1;  // where it begins
  bool yes = false;
  std::int64_t number = 0;
  std::string text;                // UTF-8
  std::vector<std::string> names;  // of an object's members, in the order of the file
  std::vector<Value> items;        // a list's items, or an object's members
};

// Parses a text with comments. What is no JSON, names given twice in one object and values nested too deeply
// are added to the problems, under the file's name; nothing when the text is no JSON.
std::optional<Value> ParseJson(const std::string& text, const std::string& file, Problems& problems);

}  // namespace kesp::simulator
