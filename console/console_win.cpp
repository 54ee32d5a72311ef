// Words out and in, and the line of progress between them.
#include "console/console_win.h"

#include <algorithm>
#include <system_error>

#include "console/wide_text_win.h"

namespace kesp::console {

void ConsoleWin::Write(std::string_view text) {
  if (output_.IsConsole()) ShowProgress("");
  output_.Write(text);
}

void ConsoleWin::WriteError(std::string_view text) {
  ShowProgress("");
  try {
    error_.Write(text);
  } catch (const std::system_error&) {
    // There is nowhere left to tell it.
  }
}

void ConsoleWin::ShowProgress(const std::string& line) {
  if (!error_.IsConsole() || (line.empty() && shown_ == 0)) return;
  std::wstring text = ToWide(line);
  // In the last column the console would begin a new line.
  const int width = std::max(error_.Width(), 2);
  text.resize(std::min(text.size(), static_cast<std::size_t>(width - 1)));
  const std::size_t length = text.size();
  if (shown_ > length) text.append(shown_ - length, L' ');
  shown_ = length;
  if (line.empty()) text += L'\r';
  try {
    error_.Write("\r" + ToUtf8(text));
  } catch (const std::system_error&) {
    // Progress is not worth ending for.
  }
}

std::optional<std::string> ConsoleWin::ReadLine(const std::string& prompt) {
  ShowProgress("");
  if (input_.IsConsole()) (output_.IsConsole() ? output_ : error_).Write(prompt);
  if (Interrupted()) return std::nullopt;
  auto line = input_.Next();
  return Interrupted() ? std::nullopt : line;
}

}  // namespace kesp::console
