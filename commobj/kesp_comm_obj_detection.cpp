// DetectInstrument and SetInputMode: what the selected transport does in one call.
#include "commobj/kesp_comm_obj.h"
#include "support/error_trap.h"

namespace kesp {

namespace {

constexpr wchar_t kDetectSource[] = L"[CKespCommObj - DetectInstrument()]";
// Clients know this operation by the source of Update.
constexpr wchar_t kSetInputModeSource[] = L"[CKespCommObj - Update()]";

}  // namespace

bool CKespCommObj::DetectInstrument(std::wstring& result, EDetectLevel DetectLevel) {
  RequireTransport(kDetectSource);
  const auto detect = [&](const auto& detection) {
    return RunTrapped(environment_.user, L"attempting to detect instrument", detection);
  };
  switch (comm_style_) {
    case ECommStyle::csRS232:
      return detect([&] { return DetectOnSerial(result, DetectLevel); });
    case ECommStyle::csTCPIP:
      return detect([&] { return DetectOnNetwork(result, DetectLevel); });
    case ECommStyle::csIEEE:
      return detect([&] { return ieee_->AutoDetect(result, DetectLevel, ESearchOption::soFindFirst); });
    default:
      throw StyleNotSupported(kDetectSource);
  }
}

bool CKespCommObj::DetectOnSerial(std::wstring& result, EDetectLevel level) {
  const Attempt detection = Try([&] { return serial_->AutoDetect(result, level); });
  // It has closed the port.
  serial_port_open_ = false;
  if (detection.error) throw *detection.error;
  return detection.succeeded;
}

bool CKespCommObj::DetectOnNetwork(std::wstring& result, EDetectLevel level) {
  const Attempt detection = Try([&] { return network_->AutoDetect(result, level); });
  // As after a query, so that the next one goes to the address that is set by then.
  Try([this] { return network_->Uninitialize(); });
  if (detection.error) throw *detection.error;
  return detection.succeeded;
}

void CKespCommObj::SetInputMode(EInputMode eMode) {
  RequireTransport(kSetInputModeSource);
  comm_error_ = ECommError::cfrOtherError;
  if (comm_style_ != ECommStyle::csRS232) return;
  RunTrapped(environment_.user, L"attempting to set input mode", [&] {
    serial_->SetInputMode(eMode);
    return true;
  });
}

}  // namespace kesp
