// What helps after a failure, where the case is known.
#pragma once

#include <optional>
#include <string>

#include "console/address.h"
#include "console/library.h"

namespace kesp::console {

// One sentence; empty where the case is not known.
std::string HintFor(const LibraryError& error, const Address& address);

// For a reply from a COM port that took the whole timeout (in milliseconds; nothing: the library's own).
std::string LoneReturnHint(const Address& address, std::optional<int> timeout_ms, double seconds);

}  // namespace kesp::console
