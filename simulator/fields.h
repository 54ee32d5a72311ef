// Strict access to the values of a description, where every mistake is noted and none ends the reading.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/json_value.h"
#include "simulator/problems.h"

namespace kesp::simulator {

// Which whole numbers a member takes.
struct Range {
  std::int64_t least;
  std::int64_t most;
};

// One value and its place. What it is asked for and does not have is noted, and a value that does no harm is
// given in its place. The value, the file's name and the problems must outlive it.
class Entry {
 public:
  Entry(const Value& value, std::string place, const std::string& file, Problems& problems)
      : value_(&value), place_(std::move(place)), file_(&file), problems_(&problems) {}

  const std::string& place() const { return place_; }
  bool Is(Value::Kind kind) const { return value_->kind == kind; }
  bool IsText(std::string_view utf8) const { return Is(Value::Kind::kText) && value_->text == utf8; }
  // Notes a mistake.
  void Wrong(const std::string& what) const { problems_->Add(*file_, value_->line, place_, what); }
  // Notes a mistake that only later shows where this value would have to be.
  void Missing(std::string_view name) const;

  // A text as it is, for names of files.
  std::string Utf8Text() const;
  // The bytes meant by a text, one for each character.
  std::string Text() const;
  // The bytes meant by a text of hexadecimal pairs.
  std::string Hex() const;
  std::int64_t Whole(Range range) const;
  bool YesOrNo() const;
  // For members that only say something by being there: anything but true is wrong.
  void RequireTrue() const;

  // The items of a list; none of anything else, which is not noted.
  std::vector<Entry> Items() const;
  // The members of an object likewise, by names as bytes.
  std::vector<std::pair<std::string, Entry>> Members() const;
  // A member of an object, if there is one.
  std::optional<Entry> Member(std::string_view name) const;

  Problems& problems() const { return *problems_; }

 private:
  Entry Within(const Value& value, const std::string& name) const {
    return Entry(value, place_ + "/" + name, *file_, *problems_);
  }

  const Value* value_;
  std::string place_;
  const std::string* file_;
  Problems* problems_;
};

// The members of an object, each to be asked for; Finish notes those that nobody asked for.
class Fields {
 public:
  // Anything but an object is noted, and has no members.
  explicit Fields(const Entry& entry);

  const Entry& entry() const { return entry_; }
  bool Has(std::string_view name) const { return entry_.Member(name).has_value(); }
  // The member, if it is there.
  std::optional<Entry> Find(std::string_view name);
  // The same, where its absence is noted.
  std::optional<Entry> Need(std::string_view name);

  // The items of a list that may be left out.
  std::vector<Entry> List(std::string_view name);

  std::string TextOr(std::string_view name, const std::string& otherwise);
  std::int64_t WholeOr(std::string_view name, Range range, std::int64_t otherwise);
  std::optional<std::int64_t> Whole(std::string_view name, Range range);
  bool YesOrNoOr(std::string_view name, bool otherwise);

  // To be called when all were asked for. "description", a text or a list of texts, may always be there.
  void Finish();

 private:
  const Entry entry_;
  const bool is_object_;
  std::set<std::string, std::less<>> asked_;
};

}  // namespace kesp::simulator
