// Standard input, line by line: from a console with its own editing and history, or from a pipe in UTF-8.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace kesp::console {

class InputLines {
 public:
  InputLines();
  // Gives the console its mode back.
  ~InputLines();
  InputLines(const InputLines&) = delete;
  InputLines& operator=(const InputLines&) = delete;

  bool IsConsole() const { return is_console_; }
  // Without its end; nothing at the end of the input and when Ctrl-C is pressed at a console.
  std::optional<std::string> Next();

 private:
  void SetMode();
  std::optional<std::string> NextTyped();
  std::optional<std::string> NextRead();
  bool ReadMore();

  HANDLE handle_;
  bool is_console_ = false;
  DWORD mode_ = 0;  // the console's, as it was found
  bool is_mode_set_ = false;
  std::string waiting_;  // read, but not given out
};

}  // namespace kesp::console
