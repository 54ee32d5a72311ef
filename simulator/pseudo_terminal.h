// A serial line made of a pseudo-terminal, to be found under a name.
#pragma once

#include <string>

#include "simulator/line_settings.h"

namespace kesp::simulator {

// Opens a pseudo-terminal in raw mode and makes a symbolic link to the client's end of it. The client may
// open and close that end as often as it likes without the master noticing. Used by one thread.
class PseudoTerminal {
 public:
  // Replaces a link to nowhere or to another pseudo-terminal in one step. Throws std::system_error when there
  // is no pseudo-terminal to be had, the link cannot be made, or something else is in its place.
  explicit PseudoTerminal(std::string link);
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  // What the link points to, like "/dev/pts/3".
  const std::string& device() const { return device_; }
  const std::string& link() const { return link_; }

  // Hands over the descriptor of the master, for the caller to close. Once only.
  int TakeMaster();

  // The settings that the client chose last. Throws std::system_error after Pull.
  LineSettings settings() const { return SettingsOf(slave_); }

  // Removes the link, unless it points to something else by now, and lets go of the client's end. With the
  // master closed too, the client sees an adapter that was pulled out.
  void Pull();

 private:
  void OpenEnds();
  void MakeLink() const;

  const std::string link_;
  std::string device_;
  int master_ = -1;
  int slave_ = -1;
};

}  // namespace kesp::simulator
