// The module's lock count.
#include "server/module.h"

#include <atomic>

namespace kesp {

namespace {

std::atomic<long> locks = 0;

}  // namespace

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
