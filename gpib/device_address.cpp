// The check of an address before a device is opened.
#include "gpib/device_address.h"

#include "support/error_numbers.h"
#include "support/failure.h"

namespace kesp {

void CheckDeviceAddress(const DeviceAddress& address, const std::function<void(const wchar_t*)>& log) {
  const std::wstring source = L"[CKespIEEE - Initialize()]";
  log(L"Check Board Index...");
  if (address.board < 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, source, L"Invalid board index.");
  }
  log(L"Check Primary Address...");
  if (address.primary < 1) {
    throw Failure(ieee_error::ERR_INVALID_PRIMARY_ADDRESS, source, L"Invalid primary address.");
  }
  log(L"Check Secondary Address...");
  if (address.secondary < 0) {
    throw Failure(ieee_error::ERR_INVALID_SECONDARY_ADDRESS, source, L"Invalid secondary address.");
  }
}

}  // namespace kesp
