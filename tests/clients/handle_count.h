// The handles of this process.
#pragma once

namespace kesp::clients {

// How many are open. Throws std::runtime_error where the system does not tell.
long CountHandles();

}  // namespace kesp::clients
