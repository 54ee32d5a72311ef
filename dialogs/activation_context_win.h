// The common controls of version 6 for the windows that are made meanwhile.
#pragma once

#include <windows.h>

namespace kesp {

// The DLL or program that this code is part of, which holds its resources.
HMODULE ThisModule();

// While it lives, this thread's new windows are made of the common controls that the module's own manifest
// names, whatever the program around it uses. Where the system refuses, the controls are those of the
// program.
class ActivationContext {
 public:
  ActivationContext();
  ~ActivationContext();
  ActivationContext(const ActivationContext&) = delete;
  ActivationContext& operator=(const ActivationContext&) = delete;

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};

}  // namespace kesp
