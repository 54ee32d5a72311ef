// The module's lock count, and its stay.
#include "server/module.h"

#include <atomic>

#include "server/com_headers.h"

namespace kesp {

namespace {

std::atomic<long> locks = 0;
std::atomic<bool> is_kept = false;

}  // namespace

void KeepModule() noexcept {
  if (is_kept || is_kept.exchange(true)) return;
  // Should Windows refuse, DllCanUnloadNow says no all the same.
  HMODULE library = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&KeepModule), &library);
}

void LockModule() noexcept {
  ++locks;
}

void UnlockModule() noexcept {
  --locks;
}

bool ModuleIsInUse() noexcept {
  return is_kept || locks != 0;
}

}  // namespace kesp
