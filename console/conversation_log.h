// What was said at the terminal, written into a file as it is said.
#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace kesp::console {

class ConversationLog {
 public:
  // Appends to that file (UTF-8) from now on. Throws std::runtime_error, and then writes nothing.
  void Begin(const std::string& name);
  void End() { file_.close(); }
  bool IsOn() const { return file_.is_open(); }

  // A line: "2026-11-22T14:05:09.123 > *IDN?". Throws std::runtime_error where it could not be written;
  // nothing more is written then.
  void Note(const std::string& time, char sign, std::string_view text);

 private:
  std::string name_;
  std::ofstream file_;
};

}  // namespace kesp::console
