// The steps through the text of an address.
#include "console/address_reader.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace kesp::console {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool AreSame(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char left, char right) { return Lower(left) == Lower(right); });
}

bool IsOfName(char c) {
  return IsDigit(c) || (Lower(c) >= 'a' && Lower(c) <= 'z') || c == '.' || c == '-' || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string ListOf(const std::vector<AddressOption>& options) {
  std::string list;
  for (const AddressOption& option : options) {
    if (!list.empty()) list += &option == &options.back() ? " or " : ", ";
    list += option.shown;
  }
  return list;
}

const AddressOption& TakeOption(AddressReader& reader, const std::vector<AddressOption>& options) {
  const std::size_t begin = reader.place();
  if (IsDigit(reader.Next()) && options.front().name.empty()) return options.front();
  std::string word(reader.TakeUntil(",="));
  if (reader.Take("=")) word += '=';
  const auto option = std::find_if(options.begin(), options.end(), [&word](const AddressOption& each) {
    return !word.empty() && AreSame(each.name, word);
  });
  if (option == options.end()) reader.FailAt(begin, "expected here: " + ListOf(options));
  return *option;
}

}  // namespace

bool AddressReader::Take(std::string_view word) {
  if (!AreSame(text_.substr(place_, word.size()), word)) return false;
  place_ += word.size();
  return true;
}

std::string_view AddressReader::TakeUntil(std::string_view ends) {
  const std::size_t begin = place_;
  place_ = std::min(text_.find_first_of(ends, begin), text_.size());
  return text_.substr(begin, place_ - begin);
}

int AddressReader::TakeNumber(int lowest, int highest, const std::string& expected) {
  const std::size_t begin = place_;
  while (IsDigit(Next())) ++place_;
  int number = 0;
  const auto [end, error] = std::from_chars(text_.data() + begin, text_.data() + place_, number);
  if (error != std::errc() || number < lowest || number > highest)
    FailAt(begin, "expected here: " + expected);
  return number;
}

std::string AddressReader::TakeName(const std::string& expected) {
  const std::size_t begin = place_;
  while (IsOfName(Next())) ++place_;
  if (place_ == begin) Fail("expected here: " + expected);
  return std::string(text_.substr(begin, place_ - begin));
}

void AddressReader::FailAt(std::size_t place, const std::string& expected) const {
  throw AddressError(text_, place, expected);
}

void ReadOptions(AddressReader& reader, const std::vector<AddressOption>& options) {
  std::set<std::string> seen;
  while (!reader.AtEnd()) {
    if (!reader.Take(",")) reader.Fail("expected here: the end, or a comma and " + ListOf(options));
    const std::size_t begin = reader.place();
    const AddressOption& option = TakeOption(reader, options);
    if (!seen.insert(option.name).second) reader.FailAt(begin, "this stands there already");
    if (option.excludes && seen.contains(*option.excludes))
      reader.FailAt(begin, "this cannot stand beside " + *option.excludes);
    option.read(reader);
  }
}

}  // namespace kesp::console
