// Windows, the processor, VBScript and Office.
#pragma once

#include <optional>

#include "console/system_facts.h"

namespace kesp::console {

SystemFacts ReadSystemFacts();
std::optional<Office> FindOffice();
// Whether scripts of that width have their language.
bool FindVbScript(int bits);

}  // namespace kesp::console
