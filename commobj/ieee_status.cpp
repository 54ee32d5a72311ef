// Statuses by error number of the IEEE-488 transport.
#include "commobj/ieee_status.h"

#include "support/error_numbers.h"

namespace kesp {

ECommError IeeeInitializeStatus(std::int32_t number) {
  switch (number) {
    case ieee_error::ERR_INVALID_PRIMARY_ADDRESS:
      return ECommError::cfrInvalidPrimaryAddress;
    case ieee_error::ERR_INVALID_SECONDARY_ADDRESS:
      return ECommError::cfrInvalidSecondaryAddress;
    case ieee_error::ERR_INVALID_BOARD_INDEX:
      return ECommError::cfrInvalidBoardIndex;
    default:
      return ECommError::cfrInitializeFailed;
  }
}

}  // namespace kesp
