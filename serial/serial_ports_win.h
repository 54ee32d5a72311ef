// The serial ports of Windows.
#pragma once

#include "serial/serial_control.h"

namespace kesp {

// \\.\COM1 to \\.\COM256. Every thread may use it.
class SerialPortsWin final : public SerialPorts {
 public:
  std::unique_ptr<SerialControl> MakeControl() override;
  std::int32_t IsCOMPortAvailable(std::int16_t port) override;
};

// The ports of this machine.
SerialPorts& SystemSerialPorts();

}  // namespace kesp
