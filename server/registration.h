// What the library writes into the registry so that clients find it, and its removal.
#pragma once

#include "server/com_headers.h"

namespace kesp {

// Where the entries go: for all users of the machine, or for the present user only.
enum class RegistrationScope { kMachine, kUser };

// Who may load the library: its clients alone, or the system's surrogate process as well, for clients of the
// other bitness and, where an administrator allows it, of other machines.
enum class Hosting { kInProcess, kSurrogateToo };

// Writes the classes, their ProgIDs, the interfaces and the type library, with the path of this DLL. What was
// written is taken back when something fails. SELFREG_E_CLASS or the system's own error (such as
// E_ACCESSDENIED without the right to register for the machine). kSurrogateToo is for the machine.
HRESULT Register(RegistrationScope scope, Hosting hosting = Hosting::kInProcess) noexcept;

// Removes everything that Register wrote. Entries that the library of the other bitness shares (ProgIDs, the
// type library's version, which then names the folder of that one's help) stay while that one is registered.
// Succeeds when there is nothing to remove.
HRESULT Unregister(RegistrationScope scope) noexcept;

}  // namespace kesp
