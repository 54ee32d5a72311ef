// An IEEE-488 transport beside the simulated driver, and where tests of it run.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/clients/ieee_client.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/simulated_bus.h"
#include "tests/clients/simulated_driver.h"

namespace kesp::clients {

// With another bus, on a new thread in an apartment of its own.
inline void RunAfresh(const SimulatedDriver& driver, const std::string& bus,
                      const std::function<void()>& work) {
  driver.Load(bus);
  RunElsewhere(COINIT_APARTMENTTHREADED, work);
}

// The driver alone, for tests that bring threads of their own.
class GpibDriverFixture : public testing::Test {
 protected:
  GpibDriverFixture() { driver_.Load(MeterBus()); }
  void TearDown() override { driver_.ExpectNothingLeft(); }

  const SimulatedDriver driver_;
};

// What a test on a thread of its own needs: the driver, and a transport.
class GpibStage {
 protected:
  const SimulatedDriver driver_;
  IeeeClient ieee_;
};

// Sets the stage on a new thread, runs the test there, and looks when the thread has ended at what it left.
template <class Stage>
void RunOnItsOwnThread() {
  const SimulatedDriver driver;
  RunAfresh(driver, MeterBus(), [] { Stage().Run(); });
  driver.ExpectNothingLeft();
}

// A test case as TEST_F defines them, but on a thread of its own. The library registers each thread with the
// driver once, and again behind the first call on a new bus, which has forgotten it.
#define GPIB_TEST(Stage, Case)                            \
  struct Stage##_##Case : Stage {                         \
    void Run();                                           \
  };                                                      \
  TEST(Stage, Case) {                                     \
    ::kesp::clients::RunOnItsOwnThread<Stage##_##Case>(); \
  }                                                       \
  void Stage##_##Case::Run()

}  // namespace kesp::clients
