// A dialog of the resources, in the font that the user has chosen for messages.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace kesp {

// The resource with its font replaced by the system's message font; in that font's size everything else is
// measured. Throws std::runtime_error when there is no such resource.
std::vector<std::uint8_t> DialogInSystemFont(int resource);

}  // namespace kesp
