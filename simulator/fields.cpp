// Strict access to the values of a description, where every mistake is noted and none ends the reading.
#include "simulator/fields.h"

#include <algorithm>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

using Kind = Value::Kind;

constexpr char kBytesOnly[] = "may only hold characters from \\u0000 to \\u00FF (one byte each)";

bool IsTextOrTexts(const Entry& entry) {
  const std::vector<Entry> items = entry.Items();
  return entry.Is(Kind::kText) ||
         (entry.Is(Kind::kList) &&
          std::all_of(items.begin(), items.end(), [](const Entry& item) { return item.Is(Kind::kText); }));
}

}  // namespace

void Entry::Missing(std::string_view name) const {
  problems_->Add(*file_, value_->line, place_ + "/" + std::string(name), "is missing");
}

std::string Entry::Utf8Text() const {
  if (!Is(Kind::kText)) Wrong("must be a text");
  return value_->text;
}

std::string Entry::Text() const {
  const std::optional<std::string> bytes = BytesFromText(Utf8Text());
  if (!bytes) Wrong(kBytesOnly);
  return bytes.value_or("");
}

std::string Entry::Hex() const {
  const std::optional<std::string> bytes = Is(Kind::kText) ? BytesFromHex(value_->text) : std::nullopt;
  if (!bytes) Wrong("must be pairs of hexadecimal digits, for example \"00 FF\"");
  return bytes.value_or("");
}

std::int64_t Entry::Whole(Range range) const {
  if (Is(Kind::kWhole) && value_->number >= range.least && value_->number <= range.most)
    return value_->number;
  Wrong("must be a whole number from " + std::to_string(range.least) + " to " + std::to_string(range.most));
  return range.least;
}

bool Entry::YesOrNo() const {
  if (!Is(Kind::kYesNo)) Wrong("must be true or false");
  return value_->yes;
}

void Entry::RequireTrue() const {
  if (!Is(Kind::kYesNo) || !value_->yes) Wrong("must be true, or be left out");
}

std::vector<Entry> Entry::Items() const {
  std::vector<Entry> items;
  if (!Is(Kind::kList)) return items;
  for (std::size_t i = 0; i < value_->items.size(); ++i)
    items.push_back(Within(value_->items[i], std::to_string(i)));
  return items;
}

std::vector<std::pair<std::string, Entry>> Entry::Members() const {
  std::vector<std::pair<std::string, Entry>> members;
  if (!Is(Kind::kObject)) return members;
  for (std::size_t i = 0; i < value_->items.size(); ++i) {
    const Entry member = Within(value_->items[i], value_->names[i]);
    const std::optional<std::string> name = BytesFromText(value_->names[i]);
    if (!name) member.Wrong(kBytesOnly);
    members.emplace_back(name.value_or(""), member);
  }
  return members;
}

std::optional<Entry> Entry::Member(std::string_view name) const {
  if (!Is(Kind::kObject)) return std::nullopt;
  const auto found = std::find(value_->names.begin(), value_->names.end(), name);
  if (found == value_->names.end()) return std::nullopt;
  return Within(value_->items[static_cast<std::size_t>(found - value_->names.begin())], *found);
}

Fields::Fields(const Entry& entry) : entry_(entry), is_object_(entry.Is(Kind::kObject)) {
  if (!is_object_) entry.Wrong("must be an object");
}

std::optional<Entry> Fields::Find(std::string_view name) {
  asked_.insert(std::string(name));
  return entry_.Member(name);
}

std::optional<Entry> Fields::Need(std::string_view name) {
  std::optional<Entry> found = Find(name);
  if (!found && is_object_) entry_.Missing(name);
  return found;
}

std::vector<Entry> Fields::List(std::string_view name) {
  const std::optional<Entry> list = Find(name);
  if (list && !list->Is(Kind::kList)) list->Wrong("must be a list");
  return list ? list->Items() : std::vector<Entry>();
}

std::string Fields::TextOr(std::string_view name, const std::string& otherwise) {
  const std::optional<Entry> found = Find(name);
  return found ? found->Text() : otherwise;
}

std::int64_t Fields::WholeOr(std::string_view name, Range range, std::int64_t otherwise) {
  return Whole(name, range).value_or(otherwise);
}

std::optional<std::int64_t> Fields::Whole(std::string_view name, Range range) {
  const std::optional<Entry> found = Find(name);
  if (!found) return std::nullopt;
  return found->Whole(range);
}

bool Fields::YesOrNoOr(std::string_view name, bool otherwise) {
  const std::optional<Entry> found = Find(name);
  return found ? found->YesOrNo() : otherwise;
}

void Fields::Finish() {
  const std::optional<Entry> description = Find("description");
  if (description && !IsTextOrTexts(*description)) description->Wrong("must be a text or a list of texts");
  for (const auto& [name, member] : entry_.Members()) {
    if (!asked_.contains(name)) member.Wrong("is not a known member");
  }
}

}  // namespace kesp::simulator
