// What the unit tests of the IEEE-488 transport's operations share: the object over a fake driver.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "gpib/ieee_events_fake.h"
#include "gpib/kesp_ieee.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/text.h"

namespace kesp {

using Calls = std::vector<std::string>;
using Lines = std::vector<std::wstring>;

// A device at address 5 whose EOSChar is good for both readings.
class IeeeFixture : public testing::Test {
 protected:
  IeeeFixture() {
    bus_.knows_descriptors = true;
    ieee_.SetPrimaryAddress(5);
    ieee_.SetEOSChar(L"10");
  }

  // From now on calls of the entry point come to this.
  void Answer(const char* entry_point, const GpibOutcome& outcome) {
    bus_.answers[entry_point] = [outcome] { return outcome; };
  }

  // The bus calls since the last look.
  Calls Heard() { return std::exchange(bus_.heard, {}); }

  // The messages of the diagnostic log.
  Lines Logged() {
    Lines lines;
    const std::string content = environment_.files.Content(ieee_.LogFilename());
    for (std::size_t begin = 0, end = 0; (end = content.find("\r\n", begin)) != std::string::npos;
         begin = end + 2) {
      const std::string line = content.substr(begin, end - begin);
      lines.push_back(SystemCodePage().FromBytes(line.substr(line.rfind('\t') + 1)));
    }
    return lines;
  }

  EnvironmentFake environment_;
  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver driver_{bus_, threads_};
  CKespIEEEEventsFake events_;
  CKespIEEE ieee_{environment_.environment, driver_, &events_};
};

}  // namespace kesp
