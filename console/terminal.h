// A conversation with one instrument, line by line.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "console/conversation_log.h"
#include "console/options.h"
#include "console/surroundings.h"
#include "console/terminal_line.h"

namespace kesp::console {

class Terminal {
 public:
  // Opens nothing yet.
  Terminal(const TerminalOptions& options, Surroundings& around);

  // Until ":quit", the end of the input or Ctrl-C. False when something failed on the way.
  bool Run();

 private:
  void Obey(const TerminalLine& line);
  // One command: what was said is shown and noted with its time and duration.
  void Exchange(const TerminalLine& line);
  // The reply of a query, as it is shown; "sent" where nothing is awaited.
  std::string Said(const TerminalLine& line);
  void SetTimeout(const std::string& duration);
  void SetLog(const std::string& name);
  // Into the log, where there is one.
  void Note(const std::string& time, char sign, const std::string& text);
  // Tells a failure; the conversation goes on.
  void Fail(const std::string& text);
  // What helps, on the line below a failure or a reply.
  void Help(const std::string& hint);

  Surroundings& around_;
  Address address_;
  std::string prompt_;
  std::optional<int> timeout_ms_;
  std::unique_ptr<Instrument> instrument_;
  ConversationLog log_;
  bool hex_ = false;
  bool failed_ = false;
};

}  // namespace kesp::console
