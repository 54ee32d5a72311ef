// Where the program's words go, and where the user's come from.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kesp::console {

class Console {
 public:
  virtual ~Console() = default;

  // To standard output, as it is: a text in UTF-8, or bytes. Throws std::system_error when that is closed or
  // full.
  virtual void Write(std::string_view text) = 0;
  // To standard error.
  virtual void WriteError(std::string_view text) = 0;

  // One line of progress on standard error, in place of the one before; empty takes it away. Where standard
  // error is no console, nothing is written.
  virtual void ShowProgress(const std::string& line) = 0;

  // A line that the user typed, without its end, with the console's own editing and history. Nothing at the
  // end of the input and after Ctrl-C. The prompt is shown only where a person types.
  virtual std::optional<std::string> ReadLine(const std::string& prompt) = 0;

  // Whether Ctrl-C was pressed. The first one does not end the program, the second one does.
  virtual bool Interrupted() const = 0;
  // From now on: kNote as at first, or the first one ends the program at once with kExitInterrupted.
  enum class OnInterrupt { kNote, kEnd };
  virtual void SetOnInterrupt(OnInterrupt what) = 0;

  // Whether a person types what ReadLine reads, in place of a file or another program.
  virtual bool IsTypedAt() const = 0;

  // Columns of the window; 0 where the output is no console.
  virtual int Width() const = 0;
};

}  // namespace kesp::console
