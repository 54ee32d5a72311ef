// What a finished overlapped operation came to.
#pragma once

#include <windows.h>

namespace kesp {

// Whether it was carried out. NTSTATUS values from 0xC0000000 on are errors; below, successes and warnings.
inline bool Succeeded(const OVERLAPPED& operation) {
  return static_cast<DWORD>(operation.Internal) < 0xC0000000;
}

}  // namespace kesp
