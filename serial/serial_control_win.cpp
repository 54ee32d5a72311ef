// The serial control: the driver's state set in one call, and counts, reads and writes that do not wait.
#include "serial/serial_control_win.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "serial/finished_read_win.h"
#include "serial/serial_control_errors.h"

namespace kesp {

namespace {

constexpr std::int16_t kLowestPort = 1;
constexpr std::int16_t kHighestPort = 256;

// Queues that a driver is asked for: half a second of input at 921600 bit/s is 46 KB.
constexpr DWORD kInputQueue = 65536;
constexpr DWORD kOutputQueue = 65536;

constexpr char kXon = 0x11;
constexpr char kXoff = 0x13;
// The sender is stopped when the input queue has no more room than this, and goes on when it holds no more.
constexpr DWORD kHighestFlowLimit = 8192;

constexpr char kParityReplacement = '?';

BYTE ParityCode(LineParity parity) {
  switch (parity) {
    case LineParity::kOdd:
      return ODDPARITY;
    case LineParity::kEven:
      return EVENPARITY;
    case LineParity::kMark:
      return MARKPARITY;
    case LineParity::kSpace:
      return SPACEPARITY;
    default:
      return NOPARITY;
  }
}

BYTE StopBitsCode(LineStopBits stop_bits) {
  switch (stop_bits) {
    case LineStopBits::kOneAndAHalf:
      return ONE5STOPBITS;
    case LineStopBits::kTwo:
      return TWOSTOPBITS;
    default:
      return ONESTOPBIT;
  }
}

std::int32_t Clipped(std::size_t count) {
  constexpr auto kHighest = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  return static_cast<std::int32_t>(std::min(count, kHighest));
}

}  // namespace

void SerialControlWin::RequireOpen() const {
  if (!handle_.is_open()) throw SerialControlFailure(kSerialPortNotOpen);
}

void SerialControlWin::SetCommPort(std::int16_t port) {
  if (handle_.is_open()) throw SerialControlFailure(kSerialPortIsOpen);
  if (port < kLowestPort || port > kHighestPort) throw SerialControlFailure(kSerialInvalidPort);
  port_ = port;
}

void SerialControlWin::SetSettings(const std::wstring& settings) {
  const std::optional<LineSettings> line = ReadLineSettings(settings);
  if (!line) throw SerialControlFailure(kSerialInvalidValue);
  settings_ = settings;
  line_ = *line;
  if (handle_.is_open()) Configure();
}

void SerialControlWin::SetHandshaking(SerialHandshaking handshaking) {
  handshaking_ = handshaking;
  if (handle_.is_open()) Configure();
}

void SerialControlWin::Open() {
  if (handle_.is_open()) throw SerialControlFailure(kSerialPortIsOpen);
  const OpeningOutcome outcome = handle_.Open(port_);
  if (outcome != OpeningOutcome::kOpened) throw SerialControlFailure(OpenErrorNumber(outcome));
  try {
    // A recommendation, which a driver need not follow.
    SetupComm(handle_.get(), kInputQueue, kOutputQueue);
    // A read returns at once with what is there.
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = MAXDWORD;
    if (!SetCommTimeouts(handle_.get(), &timeouts)) throw SerialControlFailure(kSerialStateRefused);
    Configure();
    // What came before that was received at other settings.
    PurgeComm(handle_.get(), PURGE_RXCLEAR);
  } catch (...) {
    Close();
    throw;
  }
}

// Within the queue that the driver has in truth: it refuses limits beyond. Where it does not tell, its own
// stay.
void SerialControlWin::SetFlowLimits(DCB& state) {
  COMMPROP properties{};
  properties.wPacketLength = sizeof properties;
  if (!GetCommProperties(handle_.get(), &properties) || properties.dwCurrentRxQueue == 0) return;
  const auto quarter = static_cast<WORD>(std::min(properties.dwCurrentRxQueue / 4, kHighestFlowLimit));
  state.XonLim = quarter;
  state.XoffLim = quarter;
}

// In one call, so that the control lines do not change on the way and stand before a byte can leave.
void SerialControlWin::Configure() {
  DCB state{};
  state.DCBlength = sizeof state;
  if (!GetCommState(handle_.get(), &state)) throw SerialControlFailure(kSerialStateUnknown);
  const bool flow = handshaking_ == SerialHandshaking::kXonXoff;
  const bool parity = line_.parity != LineParity::kNone;
  state.BaudRate = static_cast<DWORD>(line_.bits_per_second);
  state.ByteSize = static_cast<BYTE>(line_.data_bits);
  state.Parity = ParityCode(line_.parity);
  state.StopBits = StopBitsCode(line_.stop_bits);
  state.fBinary = TRUE;
  state.fParity = parity;
  state.fErrorChar = parity;
  state.ErrorChar = kParityReplacement;
  state.fNull = FALSE;
  state.fAbortOnError = FALSE;
  state.fOutxCtsFlow = FALSE;
  state.fOutxDsrFlow = FALSE;
  state.fDsrSensitivity = FALSE;
  state.fDtrControl = dtr_ ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
  state.fRtsControl = rts_ ? RTS_CONTROL_ENABLE : RTS_CONTROL_DISABLE;
  state.fOutX = flow;
  state.fInX = flow;
  state.fTXContinueOnXoff = FALSE;
  state.XonChar = kXon;
  state.XoffChar = kXoff;
  if (flow) SetFlowLimits(state);
  if (SetCommState(handle_.get(), &state)) return;
  // Some drivers know no replacement for characters of wrong parity.
  state.fErrorChar = FALSE;
  if (!parity || !SetCommState(handle_.get(), &state)) throw SerialControlFailure(kSerialStateRefused);
}

void SerialControlWin::Close() noexcept {
  if (!handle_.is_open()) return;
  // Only when there is something: a purge would also cut short what the device is sending just now.
  if (may_hold_output_) {
    writes_.Abandon(handle_.get());
    PurgeComm(handle_.get(), PURGE_TXABORT | PURGE_TXCLEAR);
  }
  // Those of an earlier ClearOutBuffer, too.
  writes_.AwaitAbandoned();
  handle_.Close();
  writes_.TakeError();
  may_hold_output_ = false;
}

COMSTAT SerialControlWin::Status(std::int32_t error_number) {
  RequireOpen();
  DWORD errors = 0;
  COMSTAT status{};
  if (!ClearCommError(handle_.get(), &errors, &status)) throw SerialControlFailure(error_number);
  return status;
}

std::int32_t SerialControlWin::InBufferCount() {
  return Clipped(Status(kSerialReadError).cbInQue);
}

// Drivers count the bytes of a pending write in their queue, or do not know of them until they take them.
std::int32_t SerialControlWin::OutBufferCount() {
  const DWORD queued = Status(kSerialDeviceError).cbOutQue;
  const std::size_t pending = writes_.Count();
  if (writes_.TakeError() != 0) throw SerialControlFailure(kSerialDeviceError);
  may_hold_output_ = queued != 0 || pending != 0;
  return Clipped(queued != 0 ? queued : pending);
}

void SerialControlWin::ClearInBuffer() {
  RequireOpen();
  if (!PurgeComm(handle_.get(), PURGE_RXABORT | PURGE_RXCLEAR)) throw SerialControlFailure(kSerialReadError);
}

void SerialControlWin::ClearOutBuffer() {
  RequireOpen();
  // The count was 0 after the last write: there is nothing to clear, and no need to ask the driver.
  if (!may_hold_output_) return;
  writes_.Abandon(handle_.get());
  if (!PurgeComm(handle_.get(), PURGE_TXABORT | PURGE_TXCLEAR)) {
    throw SerialControlFailure(kSerialDeviceError);
  }
  may_hold_output_ = false;
}

void SerialControlWin::SetDTREnable(bool on) {
  dtr_ = on;
  if (!handle_.is_open()) return;
  if (!EscapeCommFunction(handle_.get(), on ? SETDTR : CLRDTR))
    throw SerialControlFailure(kSerialDeviceError);
}

void SerialControlWin::SetRTSEnable(bool on) {
  rts_ = on;
  if (!handle_.is_open()) return;
  if (!EscapeCommFunction(handle_.get(), on ? SETRTS : CLRRTS))
    throw SerialControlFailure(kSerialDeviceError);
}

void SerialControlWin::Output(std::string_view bytes) {
  RequireOpen();
  if (bytes.empty()) return;
  may_hold_output_ = true;
  if (writes_.Start(handle_.get(), bytes) != 0) throw SerialControlFailure(kSerialDeviceError);
}

std::string SerialControlWin::Input() {
  const DWORD count = Status(kSerialReadError).cbInQue;
  if (count == 0) return {};
  std::optional<std::string> bytes = FinishedRead(handle_.get(), count);
  if (!bytes) throw SerialControlFailure(kSerialReadError);
  return std::move(*bytes);
}

}  // namespace kesp
