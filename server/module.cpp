// The module's instance handle and lock count.
#include "server/module.h"

#include <atomic>

namespace kesp {

namespace {

HINSTANCE instance = nullptr;
std::atomic<long> locks = 0;

}  // namespace

void SetModuleInstance(HINSTANCE value) {
  instance = value;
}

HINSTANCE ModuleInstance() {
  return instance;
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(instance, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void LockModule() {
  ++locks;
}

void UnlockModule() {
  --locks;
}

bool ModuleIsInUse() {
  return locks != 0;
}

}  // namespace kesp
