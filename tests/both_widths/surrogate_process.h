// The system's surrogate processes, as a test counts and ends them.
#pragma once

#include <windows.h>

#include <vector>

namespace kesp::clients {

struct SurrogateProcess {
  DWORD id = 0;
  bool is_32_bit = false;
};

// Those that run now (dllhost.exe).
std::vector<SurrogateProcess> SurrogateProcesses();

// Whether all of them may be ended: in a Wine prefix of the tests' own. A Windows runs those of other
// programs, too.
bool MayKillSurrogateProcesses();

// Ends all of them at once, as a fault would, and returns when they are gone. Only where that is allowed.
void KillSurrogateProcesses();

// Waits for a dialog that one of them shows and cancels it; false when none came within ten seconds.
bool CloseDialogOfASurrogate();

}  // namespace kesp::clients
