// Opening the library's help from a dialog.
#pragma once

#include <cstdint>

#include "support/user_surface.h"

namespace kesp {

// The dialogs' topics in the library's own help. The rule for these numbers stands at the top of
// server/KespCommObj.idl.
enum class HelpTopic : std::uint32_t { kComSettings = 9001, kRFModemSettings = 9002, kTCPSettings = 9003 };

// Opens a dialog's help: the topic of that context number in the help file that a client has named, or, while
// none has, the dialog's own topic in the library's own help. Without that it is as if a file with an empty
// name had been named. The pointer and the answer are those of CallHelp.
bool ShowContextHelp(UserSurface& user, std::int32_t context, HelpTopic own_topic);

// Gives the help viewer a command (of the Win32 function WinHelp) on the current help file, under the busy
// mouse pointer. False when the viewer refused it, and when it failed, which nobody is told; the pointer
// stays busy then.
bool CallHelp(UserSurface& user, std::uint32_t command, std::uint32_t data);

}  // namespace kesp
