// The library's entries in the registry.
#pragma once

#include "console/registration_entry.h"

namespace kesp::console {

// As programs of that width see them, whatever the width of this one.
Registrations ReadRegistrations(int bits);

}  // namespace kesp::console
