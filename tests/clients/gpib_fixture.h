// An IEEE-488 transport beside the simulated driver.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/clients/ieee_client.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/simulated_bus.h"
#include "tests/clients/simulated_driver.h"

namespace kesp::clients {

// The driver alone, for tests that bring threads of their own.
class GpibDriverFixture : public testing::Test {
 protected:
  GpibDriverFixture() { driver_.Load(MeterBus()); }

  // With another bus, on a new thread in an apartment of its own.
  void RunAfresh(const std::string& bus, const std::function<void()>& work) {
    driver_.Load(bus);
    RunElsewhere(COINIT_APARTMENTTHREADED, work);
  }

  SimulatedDriver driver_;
};

class GpibFixture : public GpibDriverFixture {
 protected:
  Apartment apartment_;
  IeeeClient ieee_;
};

}  // namespace kesp::clients
