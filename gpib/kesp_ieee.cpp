// The IEEE-488 transport: defaults and the rules of its settings.
#include "gpib/kesp_ieee.h"

#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/object_key.h"

namespace kesp {

namespace {

// Five bits address a device on the bus; 31 is the code of "unlisten" and "untalk" (IEEE 488.1).
constexpr std::int16_t kHighestAddress = 30;

}  // namespace

CKespIEEE::CKespIEEE(Environment& environment) : key_(NewObjectKey(environment.guids)) {}

void CKespIEEE::SetPrimaryAddress(std::int16_t value) {
  // 0 is the board itself.
  if (value < 1 || value > kHighestAddress) {
    throw Failure(ieee_error::ERR_INVALID_PRIMARY_ADDRESS, L"[CKespIEEE - PrimaryAddress]",
                  L"Invalid primary address.");
  }
  primary_address_ = value;
}

void CKespIEEE::SetSecondaryAddress(std::int16_t value) {
  if (value < 0 || value > kHighestAddress) {
    throw Failure(ieee_error::ERR_INVALID_SECONDARY_ADDRESS, L"[CKespIEEE - SecondaryAddress]",
                  L"Invalid secondary address.");
  }
  secondary_address_ = value;
}

void CKespIEEE::SetBoardIndex(std::int16_t value) {
  // One board per system is a deliberate limit.
  if (value != 0) {
    throw Failure(ieee_error::ERR_INVALID_BOARD_INDEX, L"[CKespIEEE - BoardIndex]", L"Invalid board index.");
  }
  board_index_ = value;
}

}  // namespace kesp
