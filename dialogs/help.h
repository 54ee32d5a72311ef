// Opening the library's help from a dialog.
#pragma once

#include <cstdint>

#include "support/user_surface.h"

namespace kesp {

// Opens the topic of that context number in the current help file; whether the help viewer took it.
bool ShowContextHelp(UserSurface& user, std::int32_t context);

// Gives the help viewer a command (of the Win32 function WinHelp) on the current help file, under the busy
// mouse pointer. False when the viewer refused it, and when it failed, which nobody is told; the pointer
// stays busy then.
bool CallHelp(UserSurface& user, std::uint32_t command, std::uint32_t data);

}  // namespace kesp
