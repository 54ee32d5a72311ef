// Looking for all instruments on the local network.
#pragma once

#include <vector>

#include "KespCommObj.h"
#include "console/library.h"

namespace kesp::console {

// Throws LibraryError where the broadcast could not be sent. After a step that was answered with false nobody
// further is asked; what was found by then is there.
std::vector<FoundInstrument> DiscoverBy(_CKespTCP* tcp, const OnDetectionStep& on_step);

}  // namespace kesp::console
