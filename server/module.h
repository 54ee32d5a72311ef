// The module: what still holds this DLL in memory.
#pragma once

namespace kesp {

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
