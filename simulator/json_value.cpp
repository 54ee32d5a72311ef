// JSON values that know the lines on which they stand.
#include "simulator/json_value.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace kesp::simulator {
namespace {

using nlohmann::json;

// More than any description needs; so that nobody runs out of stack.
constexpr std::size_t kDeepest = 32;

// How far the parser has read. It looks one character ahead of a number, so the line is that before the last
// character; the last one of any other value is no line feed.
class Position {
 public:
  void Pass(char character) {
    line_ += last_ == '\n' ? 1U : 0U;
    last_ = character;
  }
  std::size_t line() const { return line_; }

 private:
  std::size_t line_ = 1;
  char last_ = ' ';
};

// A text as the parser reads it, character by character.
class Reading {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  Reading(const char* place, Position* position) : place_(place), position_(position) {}
  const char& operator*() const { return *place_; }
  Reading& operator++() {
    position_->Pass(*place_++);
    return *this;
  }
  Reading operator++(int) {
    Reading before = *this;
    ++*this;
    return before;
  }
  bool operator==(const Reading& other) const { return place_ == other.place_; }
  bool operator!=(const Reading& other) const { return place_ != other.place_; }

 private:
  const char* place_;
  Position* position_;
};

// Builds the value out of the parser's events, whose names are the parser's.
class Builder {
 public:
  Builder(const Position& position, const std::string& file, Problems& problems)
      : position_(position), file_(file), problems_(problems) {}

  std::optional<Value> Result() { return failed_ ? std::nullopt : std::optional(std::move(root_)); }

  bool null() { return Put(Value::Kind::kNull); }
  bool boolean(bool value) {
    return Put(Value::Kind::kYesNo, [value](Value& put) { put.yes = value; });
  }
  bool number_integer(json::number_integer_t value) {
    return Put(Value::Kind::kWhole, [value](Value& put) { put.number = value; });
  }
  bool number_unsigned(json::number_unsigned_t value) {
    if (value > std::uint64_t{INT64_MAX}) return Put(Value::Kind::kFraction);
    return number_integer(static_cast<json::number_integer_t>(value));
  }
  bool number_float(json::number_float_t /*value*/, const std::string& /*text*/) {
    return Put(Value::Kind::kFraction);
  }
  bool string(std::string& value) {
    return Put(Value::Kind::kText, [&value](Value& put) { put.text = std::move(value); });
  }
  bool binary(json::binary_t& /*value*/) { return false; }

  bool start_object(std::size_t /*size*/) { return Open(Value::Kind::kObject); }
  bool start_array(std::size_t /*size*/) { return Open(Value::Kind::kList); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }

  bool key(std::string& name) {
    std::vector<std::string>& names = open_.back()->names;
    const auto first = std::find(names.begin(), names.end(), name);
    if (first != names.end()) {
      const Value& other = open_.back()->items[static_cast<std::size_t>(first - names.begin())];
      problems_.Add(file_, position_.line(), Place() + "/" + name,
                    "is given twice, first in line " + std::to_string(other.line));
    }
    names.push_back(name);
    return true;
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const json::exception& error) {
    // Of "[json.exception.parse_error.101] parse error at line 1, column 9: syntax error ..." what follows
    // the column's number.
    const std::string what = error.what();
    const std::size_t column = what.find("column ");
    const std::size_t end = what.find(": ", column == std::string::npos ? 0 : column);
    problems_.Add(file_, position_.line(), Place(),
                  "is not JSON: " + (end == std::string::npos ? what : what.substr(end + 2)));
    failed_ = true;
    return false;
  }

 private:
  template <typename Fill>
  bool Put(Value::Kind kind, const Fill& fill) {
    Value& value = open_.empty() ? root_ : open_.back()->items.emplace_back();
    value.kind = kind;
    value.line = position_.line();
    fill(value);
    return true;
  }
  bool Put(Value::Kind kind) {
    return Put(kind, [](Value&) {});
  }

  // What is open gets no further item before what is opened in it is closed, so these stay where they are.
  bool Open(Value::Kind kind) {
    if (open_.size() == kDeepest) {
      problems_.Add(file_, position_.line(), Place(), "is nested too deeply");
      failed_ = true;
      return false;
    }
    return Put(kind, [this](Value& value) { open_.push_back(&value); });
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  // Of what is open, by names and numbers.
  std::string Place() const {
    std::string place;
    for (std::size_t i = 1; i < open_.size(); ++i) place += "/" + LastIn(*open_[i - 1]);
    return place;
  }
  static std::string LastIn(const Value& value) {
    return value.names.empty() ? std::to_string(value.items.size() - 1) : value.names.back();
  }

  const Position& position_;
  const std::string& file_;
  Problems& problems_;
  Value root_;
  std::vector<Value*> open_;
  bool failed_ = false;
};

}  // namespace

std::optional<Value> ParseJson(const std::string& text, const std::string& file, Problems& problems) {
  Position position;
  Builder builder(position, file, problems);
  const char* begin = text.data();
  constexpr bool kNothingBehind = true;
  constexpr bool kComments = true;
  json::sax_parse(Reading(begin, &position), Reading(begin + text.size(), &position), &builder,
                  json::input_format_t::json, kNothingBehind, kComments);
  return builder.Result();
}

}  // namespace kesp::simulator
