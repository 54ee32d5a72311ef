// The serial ports of Windows: making controls, and trying whether a port can be had.
#include "serial/serial_ports_win.h"

#include "serial/comm_handle_win.h"
#include "serial/serial_control_win.h"

namespace kesp {

std::unique_ptr<SerialControl> SerialPortsWin::MakeControl() {
  return std::make_unique<SerialControlWin>();
}

std::int32_t SerialPortsWin::IsCOMPortAvailable(std::int16_t port) {
  return AvailabilityCode(CommHandle().Open(port));
}

SerialPorts& SystemSerialPorts() {
  static SerialPortsWin ports;
  return ports;
}

}  // namespace kesp
