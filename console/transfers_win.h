// Long transfers at a COM port.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "console/library.h"

namespace kesp::console {

// Opens the port, sends cmd unless it is empty (with that address to an Omega controller), receives until the
// line is silent, and closes the port. Throws LibraryError where nothing came.
Transfer DownloadFrom(_CKespCOMPort3* port, const std::string& cmd, const std::string& omega,
                      const OnTransfer& on_transfer);

}  // namespace kesp::console
