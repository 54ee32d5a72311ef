// The doctor's rules: from what the machine is to what is well and what is not.
#pragma once

#include "console/finding.h"
#include "console/machine.h"

namespace kesp::console {

// What clients of that width are served with: an ordinary one, and one that runs as administrator.
Findings RegistrationFindings(Machine& machine, int bits);

// The library that was delivered with this program, and the registered one, tried out. Of this program's
// width.
Findings LibraryFindings(Machine& machine);

// Whether the trace can be written where it goes unless the client says otherwise.
Findings TraceFindings(Machine& machine, int bits);

Findings GpibFindings(Machine& machine, int bits);
Findings ScriptFindings(Machine& machine, int bits);
Findings SystemFindings(Machine& machine);
Findings OfficeFindings(Machine& machine);
Findings PortFindings(Machine& machine);
Findings NetworkFindings(Machine& machine);

// All about programs of this program's own width.
Findings ThisWidth(Machine& machine);

// The same about the other width, asked of its kesp.exe; without that, what can be told from here.
Findings OtherWidth(Machine& machine);

// The whole page.
Findings Everything(Machine& machine);

}  // namespace kesp::console
