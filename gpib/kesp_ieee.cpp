// The IEEE-488 transport: creation, end and the rules of its settings.
#include "gpib/kesp_ieee.h"

#include "support/attempt.h"
#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/object_key.h"

namespace kesp {

CKespIEEE::CKespIEEE(Environment& environment, GpibDriver& driver, CKespIEEEEvents* events)
    : driver_(driver),
      events_(events),
      log_(environment.clock, environment.files, L"CKespIEEE.log"),
      key_(NewObjectKey(environment.guids)) {}

CKespIEEE::~CKespIEEE() {
  Try([&] { return Uninitialize(); });
}

void CKespIEEE::SetPrimaryAddress(std::int16_t value) {
  // 0 is the board itself.
  if (value < 1 || value > kHighestDeviceAddress) {
    throw Failure(ieee_error::ERR_INVALID_PRIMARY_ADDRESS, L"[CKespIEEE - PrimaryAddress]",
                  L"Invalid primary address.");
  }
  address_.primary = value;
}

void CKespIEEE::SetSecondaryAddress(std::int16_t value) {
  if (value < 0 || value > kHighestDeviceAddress) {
    throw Failure(ieee_error::ERR_INVALID_SECONDARY_ADDRESS, L"[CKespIEEE - SecondaryAddress]",
                  L"Invalid secondary address.");
  }
  address_.secondary = value;
}

void CKespIEEE::SetBoardIndex(std::int16_t value) {
  // One board per system is a deliberate limit.
  if (value != 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, L"[CKespIEEE - BoardIndex]", L"Invalid board index.");
  }
  address_.board = value;
}

}  // namespace kesp
