// The one GPIB driver of the process in the hands of many threads, each with devices of its own.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "gpib/ieee_events_fake.h"
#include "gpib/kesp_ieee.h"
#include "support/environment_fake.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

constexpr int kThreads = 8;

thread_local int number_of_thread = 0;

// Each thread's calls come to a count or to an error that no other thread has.
class DriverThreadsTest : public testing::Test {
 protected:
  DriverThreadsTest() {
    bus_.answers["ibclr"] = [] { return GpibOutcome{.count = 100 + number_of_thread}; };
    bus_.answers["ibeos"] = [] { return GpibOutcome::Failure(number_of_thread); };
  }

  // The life of a thread that is new to the driver, up to its end.
  void LiveOnce() {
    driver_.Load(L"[source]");
    const auto address = static_cast<std::int16_t>(number_of_thread);
    const GpibDriver::Device device = driver_.ibdev(0, address, 0, 11);
    EXPECT_FALSE(device.status.Failed());
    const auto descriptor = static_cast<std::int16_t>(device.descriptor);
    for (int call = 0; call < 3; ++call) {
      EXPECT_EQ(driver_.ibclr(descriptor).ibcntl, 100 + number_of_thread);
      EXPECT_EQ(driver_.ibeos(descriptor, 0).iberr, number_of_thread);
    }
    EXPECT_FALSE(driver_.ibonl(descriptor).Failed());
    threads_.EndThread();
  }

  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver driver_{bus_, threads_};
};

// All of them ask for the driver at once; the threads of later rounds find it there.
TEST_F(DriverThreadsTest, ThreadsComeAndGo_EachSeesItsOwnOutcomesAndIsUnregistered) {
  for (int round = 0; round < Rounds(20); ++round) {
    RunTogether(kThreads, [this](int number) {
      number_of_thread = number + 1;
      LiveOnce();
    });
    EXPECT_TRUE(bus_.Registered().empty());
    EXPECT_TRUE(bus_.open.empty());
    bus_.heard.clear();
  }
  EXPECT_EQ(bus_.loads.size(), 1U);
}

TEST_F(DriverThreadsTest, TransportsOnThreadsOfTheirOwn_ShareTheDriverAlone) {
  bus_.answers.clear();
  RunTogether(kThreads, [this](int) {
    EnvironmentFake environment;
    CKespIEEEEventsFake events;
    CKespIEEE ieee(environment.environment, driver_, &events);
    ieee.SetPrimaryAddress(5);
    ieee.SetEOSChar(L"10");
    for (int round = 0; round < Rounds(20); ++round) {
      EXPECT_TRUE(ieee.Initialize());
      EXPECT_TRUE(ieee.WriteLine(L"SETP 1"));
      EXPECT_TRUE(ieee.Uninitialize());
    }
    threads_.EndThread();
  });
  EXPECT_TRUE(bus_.open.empty());
}

}  // namespace
}  // namespace kesp::threads
