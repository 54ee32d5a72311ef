// Standard input, line by line: from a console with its own editing and history, or from a pipe in UTF-8.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kesp::console {

class InputLines {
 public:
  InputLines();

  bool IsConsole() const { return is_console_; }
  // Without its end; nothing at the end of the input and when Ctrl-C is pressed at a console.
  std::optional<std::string> Next();

 private:
  std::optional<std::string> NextTyped();
  std::optional<std::string> NextRead();
  bool ReadMore();

  HANDLE handle_;
  bool is_console_ = false;
  std::string waiting_;  // read, but not given out
};

}  // namespace kesp::console
