// What a screen reader calls a window.
#pragma once

#include <windows.h>

namespace kesp {

// The name that a label shows, given to a window for as long as this lives, which is to end before the window
// does. Where the system has no service for it, nothing changes. Used by one thread, with COM initialized.
class AccessibleName {
 public:
  AccessibleName(HWND window, HWND label);
  ~AccessibleName();
  AccessibleName(const AccessibleName&) = delete;
  AccessibleName& operator=(const AccessibleName&) = delete;

 private:
  HWND window_;
};

}  // namespace kesp
