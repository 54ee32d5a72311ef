// The TCP/IP dialog on the screen.
#pragma once

#include "network/tcp_dialog.h"

namespace kesp {

// The dialog of every network transport of this process. Each showing stands alone.
TcpDialog& SystemTcpDialog();

}  // namespace kesp
