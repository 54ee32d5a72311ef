// The serial branch of Query, QueryBinary and Update.
#include "commobj/kesp_comm_obj.h"
#include "serial/serial_control_errors.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

// How often a port is tried that another program holds.
constexpr int kOpenAttempts = 3;

std::wstring NumberAndDescription(const Attempt& attempt) {
  return L"(" + std::to_wstring(attempt.number()) + L" - " + attempt.description() + L") **";
}

// The number that an operation failed with decides; here it is compared with the communication object's own
// list, which the serial transport never raises from. Clients know the status that comes of that.
ECommError OpenStatus(const Attempt& open) {
  switch (open.number()) {
    case 0:
    case comm_obj_error::ERR_INVALID_COM_PORT:
      return ECommError::cfrInvalidSetting;
    default:
      return ECommError::cfrOtherError;
  }
}

ECommError WriteStatus(const Attempt& write) {
  switch (write.number()) {
    case 0:
    case comm_obj_error::ERR_ADDRESS_NOT_SPECIFIED:
      return ECommError::cfrInvalidSetting;
    default:
      return ECommError::cfrWriteFailed;
  }
}

std::wstring OpenLine(const Attempt& open) {
  switch (open.number()) {
    case 0:
      return L"returned False (no error) **";
    case comm_obj_error::ERR_INVALID_COM_PORT:
      return L"invalid COM port **";
    default:
      return L"open failed " + NumberAndDescription(open);
  }
}

std::wstring WriteFailureLine(const Attempt& write) {
  switch (write.number()) {
    case 0:
      return L"returned False (no error) **";
    case comm_obj_error::ERR_ADDRESS_NOT_SPECIFIED:
      return L"address not specified  **";
    default:
      return L"write failed " + NumberAndDescription(write);
  }
}

}  // namespace

bool CKespCommObj::RunOnSerial(const Exchange& exchange) {
  const Attempt attempt = Try([&] { return OpenSerialPort(exchange) && ExchangeOnSerial(exchange); });
  // The exchange is over by now: a failure to close does not change what it came to, and the port is closed
  // in every case.
  if (auto_close_) {
    const Attempt close = Try([&] { return CloseSerialPort(), true; });
    if (close.error) TraceErrorInfo(L"RS-232: ** ClosePort()", close);
  }
  if (attempt.error) throw Failure(*attempt.error);
  return attempt.succeeded;
}

void CKespCommObj::CloseSerialPort() {
  trace_.Write(L"RS-232: ClosePort()");
  serial_port_open_ = false;
  serial_->ClosePort();
}

bool CKespCommObj::OpenSerialPort(const Exchange& exchange) {
  const bool quiet = exchange.serial_opening == SerialOpening::kRetriedQuietly;
  const bool once = exchange.serial_opening == SerialOpening::kOnce;
  if (serial_port_open_ && !once) {
    if (!quiet) trace_.Write([&] { return exchange.member + L"() - port is already open..."; });
    return true;
  }
  const std::wstring operation = L"RS-232: ** OpenPort()";
  for (int attempt = 1;; ++attempt) {
    if (!quiet) trace_.Write(L"RS-232: OpenPort()");
    // What was left open is closed by it, whether or not it can be opened again.
    serial_port_open_ = false;
    const Attempt open = Try([&] { return serial_->OpenPort(); });
    if (open.succeeded) return serial_port_open_ = true;
    if (once || open.number() != kSerialPortInUse) {
      if (!quiet) trace_.Write([&] { return operation + L" " + OpenLine(open); });
      return Fail(OpenStatus(open), operation, open);
    }
    if (attempt == kOpenAttempts) {
      trace_.Write([&] { return operation + L" COM port is already open. Timed out...**"; });
      return Fail(ECommError::cfrTimeout, operation, open);
    }
    trace_.Write([&] { return operation + L" COM port is already open. Retrying...**"; });
  }
}

bool CKespCommObj::ExchangeOnSerial(const Exchange& exchange) {
  if (serial_->UseRFModem() && !serial_->RFWriteModemInstrAddress(serial_->InstrAddr())) return false;
  trace_.Write([&] {
    return L"RS-232: WriteLine(" + exchange.cmd + L"," + exchange.OmegaAddress + L"," + exchange.OmegaValue +
           L")";
  });
  const Attempt write = Try([&] {
    return serial_->WriteLine(exchange.cmd, exchange.OmegaAddress, exchange.OmegaValue, cr_before_command_);
  });
  if (!write.succeeded) {
    const std::wstring operation = L"RS-232: ** WriteLine()";
    if (exchange.read_serial) trace_.Write([&] { return operation + L" " + WriteFailureLine(write); });
    return Fail(WriteStatus(write), operation, write);
  }
  return exchange.read_serial ? ReadFromSerial(exchange) : Succeed();
}

bool CKespCommObj::ReadFromSerial(const Exchange& exchange) {
  trace_.Write([&] { return L"RS-232: " + exchange.read_operation; });
  const Attempt read = Try(exchange.read_serial);
  if (read.succeeded) {
    if (exchange.reply_for_trace)
      trace_.Write([&] { return L"RS-232: result- " + exchange.reply_for_trace(); });
    return Succeed();
  }
  const std::wstring operation = L"RS-232: ** " + exchange.read_operation;
  switch (read.number()) {
    case 0:
      trace_.Write([&] { return operation + L" returned False (no error) **"; });
      return Fail(ECommError::cfrInvalidSetting, operation, read);
    case com_port_error::ERR_READ_TIMEOUT:
      trace_.Write([&] {
        return operation + L" timed out **" +
               (exchange.partial_reply_for_trace ? L" result- " + exchange.partial_reply_for_trace() : L"");
      });
      return Fail(ECommError::cfrTimeout, operation, read);
    case com_port_error::ERR_INVALID_CHARACTERS:
      trace_.Write([&] { return operation + L" invalid characters **"; });
      return Fail(ECommError::cfrInvalidData, operation, read);
    default:
      trace_.Write([&] { return operation + L" read failed " + NumberAndDescription(read); });
      return Fail(ECommError::cfrReadFailed, operation, read);
  }
}

}  // namespace kesp
