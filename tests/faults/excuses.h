// Faults after which something is broken that the library cannot prevent.
#pragma once

#include <string>

namespace kesp::faults {

// Instead of what stays behind: the process ended.
inline constexpr char kEndOfProcess[] = "end of the process";

// Why a fault of that function in that scenario may leave exactly that behind; null where it may not.
const char* ExcuseFor(const std::string& scenario, const std::string& function, const std::string& broken);

}  // namespace kesp::faults
