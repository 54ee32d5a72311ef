// The settings dialogs.
#pragma once

#include "KespCommObj.h"

namespace kesp::console {

// Shows the dialog of the transport in use, with all its pages. True when it was confirmed.
bool EditSettings(_CKespCommObj* comm);

}  // namespace kesp::console
