// The module: which DLL this is, and what still holds it in memory.
#pragma once

#include <string>

#include "server/com_headers.h"

namespace kesp {

// Set once by DllMain.
void SetModuleInstance(HINSTANCE instance);
HINSTANCE ModuleInstance();

// The full path of this DLL.
std::wstring ModulePath();

// Counts whatever must keep the DLL loaded: objects, class factories handed out and server locks.
void LockModule();
void UnlockModule();
bool ModuleIsInUse();

// Holds the module for the length of its life.
class ModuleLock {
 public:
  ModuleLock() { LockModule(); }
  ~ModuleLock() { UnlockModule(); }
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;
};

}  // namespace kesp
