// The module: what still holds this DLL in memory.
#pragma once

namespace kesp {

// Keeps the DLL loaded until the process ends. The factories do so before they make an object.
//
// The runtime that is linked in keeps data for each thread from the first exception on, and gives back
// neither that nor its place among the process's thread-local slots when it is unloaded. A host that unloads
// and loads the library for each job would run out of slots after about a thousand. Besides, a window of a
// transport that is left to another thread is destroyed by code of this DLL, later.
void KeepModule() noexcept;

// Counts what holds the DLL before there is any object: class factories handed out and server locks.
void LockModule() noexcept;
void UnlockModule() noexcept;

// Whether the DLL must stay: for good once there was an object, and while a factory or a lock is left.
bool ModuleIsInUse() noexcept;

// Holds the module for the length of its life.
class ModuleLock {
 public:
  ModuleLock() { LockModule(); }
  ~ModuleLock() { UnlockModule(); }
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;
};

}  // namespace kesp
