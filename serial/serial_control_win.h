// The serial control on the communication functions of Windows.
#pragma once

#include <windows.h>

#include "serial/comm_handle_win.h"
#include "serial/line_settings.h"
#include "serial/pending_writes_win.h"
#include "serial/serial_control.h"

namespace kesp {

// Never waits for the line. Opening waits, for half a second at the most, for a driver that has not yet let
// go of a port that this process has just closed; closing waits, for a fifth, for writes that it calls back.
// A read takes exactly what the driver holds, so that it ends at once, unless the driver itself takes its
// time to hand it out; a write that the driver cannot take at once stays pending.
//
// Bytes with a wrong parity arrive as "?"; breaks, framing errors and overruns of the driver are not told,
// the bytes they cost are missing or wrong. NULs arrive like any other byte.
class SerialControlWin final : public SerialControl {
 public:
  SerialControlWin() = default;
  ~SerialControlWin() override { Close(); }

  void SetCommPort(std::int16_t port) override;
  void SetSettings(const std::wstring& settings) override;
  const std::wstring& Settings() const override { return settings_; }
  void SetHandshaking(SerialHandshaking handshaking) override;
  bool PortOpen() const override { return handle_.is_open(); }
  void Open() override;
  void Close() noexcept override;
  std::int32_t InBufferCount() override;
  std::int32_t OutBufferCount() override;
  void ClearInBuffer() override;
  void ClearOutBuffer() override;
  void SetDTREnable(bool on) override;
  void SetRTSEnable(bool on) override;
  void Output(std::string_view bytes) override;
  std::string Input() override;

 private:
  // What the driver holds in either direction. Throws with that number when it does not tell.
  COMSTAT Status(std::int32_t error_number);
  void RequireOpen() const;
  // Writes the settings, the handshaking and the control lines to the driver, all at once.
  void Configure();
  void SetFlowLimits(DCB& state);

  std::int16_t port_ = 1;
  std::wstring settings_ = L"9600,N,8,1";
  LineSettings line_;
  SerialHandshaking handshaking_ = SerialHandshaking::kNone;
  bool dtr_ = true;
  bool rts_ = true;
  CommHandle handle_;
  PendingWrites writes_;
  bool may_hold_output_ = false;
};

}  // namespace kesp
