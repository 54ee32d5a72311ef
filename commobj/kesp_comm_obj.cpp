// The communication object's settings, status and life.
#include "commobj/kesp_comm_obj.h"

#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/object_key.h"
#include "support/paths.h"

namespace kesp {

CKespCommObj::CKespCommObj(Environment& environment, const TransportFactory& transports)
    : environment_(environment),
      trace_(environment.clock, environment.files, L"", Rollover::kDaily),
      key_(NewObjectKey(environment.guids)),
      serial_(transports.make_serial()) {
  serial_->SetMaxBaudRate(EKespBaudRate3::br57600);
  serial_->SetMinBaudRate(EKespBaudRate3::br300);
  serial_->SetBaudRate(serial_->MaxBaudRate());
  network_ = transports.make_network();
  ieee_ = transports.make_ieee();
  SetCommStyle(ECommStyle::csRS232);
  SetDebugging(false);
  SetDebugFilename(JoinPath(FolderOfPath(environment.files.LibraryFile()), L"commobjout.log"));
}

CKespCommObj::~CKespCommObj() {
  serial_.reset();
  network_.reset();
  ieee_.reset();
}

void CKespCommObj::SetDebugFilename(const std::wstring& value) {
  trace_.SetFilename(value);
  serial_->SetLogFilename(value);
  ieee_->SetLogFilename(value);
  network_->SetLogFilename(value);
}

void CKespCommObj::SetDebugging(bool value) {
  trace_.Turn(value);
  serial_->SetCreateLogFile(value);
  ieee_->SetCreateLogFile(value);
  network_->SetCreateLogFile(value);
}

void CKespCommObj::SetCommStyle(ECommStyle value) {
  if (comm_style_ == ECommStyle::csRS232 && serial_port_open_) CloseSerialPort();
  if (value < ECommStyle::csNone || value > ECommStyle::csIEEE) {
    throw StyleNotSupported(L"[CKespCommObj - CommStyle]");
  }
  comm_style_ = value;
}

void CKespCommObj::RequireTransport(const wchar_t* source) const {
  if (comm_style_ != ECommStyle::csNone) return;
  throw Failure(comm_obj_error::ERR_NO_COMM_OBJECT, source, L"Communications object not initialized");
}

Failure CKespCommObj::StyleNotSupported(const wchar_t* source) {
  return {comm_obj_error::ERR_COMM_STYLE_NOT_SUPPORTED, source,
          L"The selected communication style is currently not supported"};
}

}  // namespace kesp
