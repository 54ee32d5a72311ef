// The settings dialogs as bare windows: what the system alone loses with them.
#pragma once

#include <windows.h>

#include "tests/soak/resources.h"

namespace kesp::soak {

// Made of the resources of the library, which must be loaded, with the common controls that its manifest
// names, and without a line of its code.
class BareDialogs {
 public:
  // Throws std::runtime_error when the library is not there.
  BareDialogs();
  ~BareDialogs();
  BareDialogs(const BareDialogs&) = delete;
  BareDialogs& operator=(const BareDialogs&) = delete;

  // Opens and closes the TCP/IP and the RS-232 dialog in turn, that many in all, and returns by how much the
  // heaps and the memory of this process have grown.
  Resources LostBy(long dialogs) const;

 private:
  void Open(long number) const;
  HWND Make(int resource, HWND parent) const;

  HMODULE library_;
  HANDLE context_;
};

}  // namespace kesp::soak
