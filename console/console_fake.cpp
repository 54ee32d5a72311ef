// What the console of the tests does with words.
#include "console/console_fake.h"

#include <system_error>

namespace kesp::console {

void ConsoleFake::Write(std::string_view text) {
  if (full) throw std::system_error(std::make_error_code(std::errc::no_space_on_device), "standard output");
  output += text;
}

std::optional<std::string> ConsoleFake::ReadLine(const std::string& prompt) {
  prompts.push_back(prompt);
  if (on_read) on_read();
  if (interrupt_after_ == 0 || typed.empty()) return std::nullopt;
  std::string line = typed.front();
  typed.pop_front();
  return line;
}

bool ConsoleFake::Interrupted() const {
  if (interrupt_after_ > 0) return --interrupt_after_, false;
  return interrupt_after_ == 0;
}

}  // namespace kesp::console
