// A help viewer of the test's own, which takes the place of the system's.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::clients {

// While it lives, a request for help from any program of this Windows comes here, because the system looks
// for the viewer by the name of its window's class. Made and used on one thread; requests are taken while
// that thread works off its messages.
class HelpViewer {
 public:
  HelpViewer();
  ~HelpViewer();
  HelpViewer(const HelpViewer&) = delete;
  HelpViewer& operator=(const HelpViewer&) = delete;

  // How many requests came, and whether the bytes of the last one hold that text with its end, or that
  // number. Their layout is the system's own.
  int requests() const { return requests_; }
  bool Mentions(const std::string& text) const { return last_.find(text + '\0') != std::string::npos; }
  bool Mentions(long number) const;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);

  HWND window_;
  int requests_ = 0;
  std::string last_;
};

}  // namespace kesp::clients
