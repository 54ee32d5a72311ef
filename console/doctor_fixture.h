// Findings that the tests of the doctor's rules look at.
#pragma once

#include <gmock/gmock.h>

#include <string>

#include "console/doctor.h"
#include "console/machine_fake.h"

namespace kesp::console {

// "OK subject: text", and " -> remedy" where there is one.
std::vector<std::string> Lines(const Findings& findings);

// Each WARN and each FAIL has a remedy, and nothing else has.
void ExpectRemedies(const Findings& findings);

}  // namespace kesp::console
