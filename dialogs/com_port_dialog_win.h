// The RS-232 dialog on the screen.
#pragma once

#include "serial/com_port_dialog.h"

namespace kesp {

// The dialog of every serial transport of this process. Each showing stands alone.
ComPortDialog& SystemComPortDialog();

}  // namespace kesp
