// The check of an address before a device is opened.
#include "gpib/device_address.h"

#include "support/error_numbers.h"
#include "support/failure.h"

namespace kesp {

namespace {

constexpr wchar_t kSource[] = L"[CKespIEEE - Initialize()]";

}  // namespace

void CheckDeviceAddress(const DeviceAddress& address, const std::function<void(const wchar_t*)>& log) {
  log(L"Check Board Index...");
  if (address.board < 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, kSource, L"Invalid board index.");
  }
  log(L"Check Primary Address...");
  if (address.primary < 1) {
    throw Failure(ieee_error::ERR_INVALID_PRIMARY_ADDRESS, kSource, L"Invalid primary address.");
  }
  log(L"Check Secondary Address...");
  if (address.secondary < 0) {
    throw Failure(ieee_error::ERR_INVALID_SECONDARY_ADDRESS, kSource, L"Invalid secondary address.");
  }
}

}  // namespace kesp
