// Steps through the text of an address, and knows the place where a mistake is.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/address.h"

namespace kesp::console {

// Words are compared without regard to case. What fails throws AddressError.
class AddressReader {
 public:
  explicit AddressReader(std::string_view text) : text_(text) {}

  bool AtEnd() const { return place_ == text_.size(); }
  // The next character; NUL at the end.
  char Next() const { return AtEnd() ? '\0' : text_[place_]; }
  std::size_t place() const { return place_; }

  // Whether the word comes next; it is passed then.
  bool Take(std::string_view word);
  // All up to the first of these characters, or to the end.
  std::string_view TakeUntil(std::string_view ends);
  // A number in the range.
  int TakeNumber(int lowest, int highest, const std::string& expected);
  // Letters, digits, dots, hyphens and underscores, and characters beyond ASCII: one at least.
  std::string TakeName(const std::string& expected);

  [[noreturn]] void FailAt(std::size_t place, const std::string& expected) const;
  [[noreturn]] void Fail(const std::string& expected) const { FailAt(place_, expected); }

 private:
  std::string_view text_;
  std::size_t place_ = 0;
};

// What can stand behind a comma.
struct AddressOption {
  std::string name;   // with "=" where a value follows; empty: whatever begins with a digit
  std::string shown;  // how a message lists it
  std::function<void(AddressReader&)> read;
  std::optional<std::string> excludes{};  // the name of an option that cannot stand beside it
};

// Reads ",option" until the end, each option once. What follows an option's name is its own matter.
void ReadOptions(AddressReader& reader, const std::vector<AddressOption>& options);

}  // namespace kesp::console
