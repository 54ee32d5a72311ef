// An IEEE-488 transport beside the simulated driver.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/clients/ieee_client.h"
#include "tests/clients/library_module.h"
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

// For threads that end at the same time. The library stays loaded until they have: when it is unloaded, it
// can end the registration of one thread alone.
class GpibThreadsFixture : public GpibDriverFixture {
 protected:
  void TearDown() override { driver_.AwaitUnregistered(); }

 private:
  LibraryModule module_;
};

// A transport on the test's own thread. The library is unloaded at the end of each test, and with it goes the
// registration of that thread.
class GpibFixture : public GpibDriverFixture {
 protected:
  Apartment apartment_;
  IeeeClient ieee_;
};

}  // namespace kesp::clients
