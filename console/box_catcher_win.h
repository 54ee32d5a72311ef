// The message boxes with which the library tells some failures, for which a program at the command line has
// no user.
#pragma once

#include <windows.h>

#include <optional>

#include "console/library.h"

namespace kesp::console {

// While it lives, a box of the library on this thread is read and answered with OK before it is shown. One at
// a time for each thread.
class BoxCatcher {
 public:
  BoxCatcher();
  ~BoxCatcher();
  BoxCatcher(const BoxCatcher&) = delete;
  BoxCatcher& operator=(const BoxCatcher&) = delete;

  // What the last box told.
  const std::optional<LibraryError>& caught() const { return caught_; }

 private:
  static LRESULT CALLBACK OnMessage(int code, WPARAM wparam, LPARAM lparam);
  void Read(HWND box);

  HHOOK hook_;
  std::optional<LibraryError> caught_;
};

}  // namespace kesp::console
