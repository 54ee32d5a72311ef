// Unit tests of the statuses by error number of the IEEE-488 transport.
#include "commobj/ieee_status.h"

#include <gtest/gtest.h>

#include "support/error_numbers.h"

namespace kesp {
namespace {

TEST(IeeeStatusTest, InitializeFailed_AddressErrorsHaveStatusesOfTheirOwn) {
  EXPECT_EQ(IeeeInitializeStatus(ieee_error::ERR_INVALID_PRIMARY_ADDRESS),
            ECommError::cfrInvalidPrimaryAddress);
  EXPECT_EQ(IeeeInitializeStatus(ieee_error::ERR_INVALID_SECONDARY_ADDRESS),
            ECommError::cfrInvalidSecondaryAddress);
  EXPECT_EQ(IeeeInitializeStatus(ieee_error::ERR_INVALID_BOARD_INDEX), ECommError::cfrInvalidBoardIndex);
}

TEST(IeeeStatusTest, InitializeFailed_AnythingElseIsInitializeFailed) {
  for (const std::int32_t number :
       {0, 5, 53, std::int32_t{ieee_error::ERR_INVALID_DEVICE}, std::int32_t{ieee_error::ERR_IBDEV},
        std::int32_t{ieee_error::ERR_IBCLR}, std::int32_t{ieee_error::ERR_IBEOS},
        std::int32_t{ieee_error::ERR_IBONL}}) {
    EXPECT_EQ(IeeeInitializeStatus(number), ECommError::cfrInitializeFailed) << number;
  }
}

}  // namespace
}  // namespace kesp
