// What the unit tests of the IEEE-488 transport's operations share: the object over a fake driver.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "gpib/ieee_events_fake.h"
#include "gpib/kesp_ieee.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"
#include "support/text.h"

namespace kesp {

using Calls = std::vector<std::string>;
// A device at address 5 whose EOSChar is good for both readings.
class IeeeFixture : public testing::Test {
 protected:
  IeeeFixture();
  ~IeeeFixture() override;

  // From now on calls of the entry point come to this.
  void Answer(const char* entry_point, const GpibOutcome& outcome);

  // The bus calls since the last look.
  Calls Heard();

  // The messages of the diagnostic log.
  Lines Logged();

  EnvironmentFake environment_;
  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver driver_{bus_, threads_};
  CKespIEEEEventsFake events_;
  CKespIEEE ieee_{environment_.environment, driver_, &events_};
};

}  // namespace kesp
