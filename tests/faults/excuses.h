// Faults after which something is broken that the library cannot prevent.
#pragma once

#include <string>

namespace kesp::faults {

// Why a fault of that function in that scenario may break something; null where it may not.
const char* ExcuseFor(const std::string& scenario, const std::string& function);

}  // namespace kesp::faults
