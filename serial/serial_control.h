// The serial-control seam: one RS-232 port with buffers in both directions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace kesp {

enum class SerialHandshaking { kNone = 0, kXonXoff = 1 };

// Owned by a serial transport and used by its thread. Nothing here pumps messages or waits for the line.
// Every operation that fails throws a Failure with a number of serial_control_errors.h; an operation that
// needs the open port throws kSerialPortNotOpen when it is closed.
class SerialControl {
 public:
  virtual ~SerialControl() = default;

  // The port's number, 1 to 256, used by the next opening. Throws kSerialInvalidPort for any other number and
  // kSerialPortIsOpen while the port is open.
  virtual void SetCommPort(std::int16_t port) = 0;

  // Rate, parity, data and stop bits as in "9600,N,8,1". Throws kSerialInvalidValue for a text that is not
  // exactly of that form (see line_settings.h) and then keeps the earlier one. On an open port they hold at
  // once, and kSerialStateRefused says that the port does not support them.
  virtual void SetSettings(const std::wstring& settings) = 0;
  virtual const std::wstring& Settings() const = 0;

  virtual void SetHandshaking(SerialHandshaking handshaking) = 0;

  virtual bool PortOpen() const = 0;

  // Opens the port for this program alone, with the settings as they are; both modem control lines are
  // already in the state asked for when the first byte can leave. Throws kSerialPortIsOpen when it is open
  // here already, kSerialInvalidPort when there is no such port, kSerialPortInUse when another program holds
  // it, and others of the list; the port is closed then.
  virtual void Open() = 0;

  // Closes the port; bytes that wait in either direction are lost. Never fails.
  virtual void Close() noexcept = 0;

  // Bytes that were received and not yet taken.
  virtual std::int32_t InBufferCount() = 0;
  // Bytes that have yet to leave.
  virtual std::int32_t OutBufferCount() = 0;
  // Discard those bytes.
  virtual void ClearInBuffer() = 0;
  virtual void ClearOutBuffer() = 0;

  // The modem control lines, both true at first. While the port is closed the state is kept for its opening.
  virtual void SetDTREnable(bool on) = 0;
  virtual void SetRTSEnable(bool on) = 0;

  // Queues the bytes and returns at once.
  virtual void Output(std::string_view bytes) = 0;

  // Takes every byte that was received; nothing when there is none. Does not wait for
  // more, but up to six seconds for a driver that does not hand out what it has counted.
  virtual std::string Input() = 0;
};

// The serial ports of the machine.
class SerialPorts {
 public:
  virtual ~SerialPorts() = default;

  virtual std::unique_ptr<SerialControl> MakeControl() = 0;

  // Tries to open the port for this program alone and closes it again: 0 when that worked, 2 when there is no
  // such port, 5 when it is in use or cannot be opened for another reason.
  virtual std::int32_t IsCOMPortAvailable(std::int16_t port) = 0;
};

}  // namespace kesp
