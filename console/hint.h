// What helps after a failure, where the case is known.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "console/address.h"
#include "console/library.h"

namespace kesp::console {

// One sentence; empty where the case is not known.
std::string HintFor(const LibraryError& error, const Address& address);

// For a reply from a COM port that was waited for until the timeout (in milliseconds; nothing: the library's
// own) was over. The library waits for a line feed, and takes what is there when the time is up.
std::string LoneReturnHint(const Address& address, std::optional<int> timeout_ms,
                           std::optional<std::chrono::milliseconds> waited);

}  // namespace kesp::console
