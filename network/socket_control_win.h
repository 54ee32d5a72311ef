// The socket control on Winsock.
#pragma once

#include <memory>

#include "network/socket_control.h"

namespace kesp {

// A control whose notifications come through a hidden window of the calling thread, which must pump messages.
// The system's resources are taken at the first Connect, so that a control that is never connected costs
// nothing.
std::unique_ptr<SocketControl> MakeSocketControl(SocketListener& listener);

}  // namespace kesp
