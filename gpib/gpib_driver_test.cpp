// Unit tests of the driver binding: loading, thread registration, calls and the copies of the status cells.
#include "gpib/gpib_driver.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "gpib/gpib_driver_fake.h"
#include "support/failure_fixture.h"

namespace kesp {
namespace {

using Calls = std::vector<std::string>;

class GpibDriverTest : public testing::Test {
 protected:
  void Load() { driver_.Load(L"[source]"); }
  // A call whose own outcome does not matter, for what it leaves.
  GpibStatus Call() { return driver_.ibclr(7); }
  void Answer(const GpibOutcome& outcome) {
    bus_.answers["ibclr"] = [outcome] { return outcome; };
  }
  void CallAndLoseTheCells() {
    Call();
    bus_.GiveCellsToTheHost();
  }
  static void ExpectUnknownFailure(const GpibStatus& status) {
    EXPECT_TRUE(status.Failed());
    EXPECT_EQ(status.ibsta, -32768);
    EXPECT_EQ(status.ErrorText(), L"Error: 0 - System error");
    EXPECT_EQ(static_cast<std::uint32_t>(status.ibcntl), 0xDEAD37F0U);
  }

  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver driver_{bus_, threads_};
};

TEST_F(GpibDriverTest, LoadedTwice_BindsOnce) {
  Load();
  Load();
  EXPECT_EQ(bus_.loads.size(), 1u);
  EXPECT_EQ(bus_.lookups["ibdev"], 1);
}

TEST_F(GpibDriverTest, LoadFails_NextLoadTriesAgain) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_EQ(RaisedBy([this] { Load(); }).number, 53);
  bus_.load_errors.clear();
  bus_.missing = {"ibrd"};
  EXPECT_EQ(RaisedBy([this] { Load(); }).number, 453);
  bus_.missing.clear();
  Load();
  EXPECT_FALSE(Call().Failed());
  EXPECT_EQ(bus_.loads.size(), 4u) << "the first time in two places";
}

// The first thread is still loading when the second one begins to.
TEST_F(GpibDriverTest, LoadedByTwoThreadsAtOnce_BindsOnce) {
  std::promise<void> loading;
  bus_.on_load = [&] {
    loading.set_value();
    // Slow on purpose: the second one must come meanwhile.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  };
  std::thread first([this] { Load(); });
  loading.get_future().wait();
  Load();
  first.join();
  EXPECT_EQ(bus_.loads.size(), 1u);
  EXPECT_EQ(bus_.lookups["ibdev"], 1);
}

TEST_F(GpibDriverTest, EachCall_PassesItsArguments) {
  Load();
  bus_.waiting = "abc";
  EXPECT_EQ(driver_.ibdev(0, 5, 9, 11).descriptor, 7);
  driver_.ibclr(7);
  driver_.ibeos(7, 1034);
  driver_.ibwrt(7, std::string("a\0b\n", 4));
  std::array<char, 5> buffer{'.', '.', '.', '.', '.'};
  EXPECT_EQ(driver_.ibrd(7, buffer).ibcntl, 3);
  EXPECT_EQ(std::string(buffer.data(), buffer.size()), "abc..");
  driver_.ibonl(40000);
  EXPECT_EQ(bus_.heard, (Calls{"ibdev(0,5,9,11,1,0)", "ibclr(7)", "ibeos(7,1034)",
                               std::string("ibwrt(7,a\0b\n)", 13), "ibrd(7,5)", "ibonl(40000,0)"}));
}

TEST_F(GpibDriverTest, Ibdev_Failed_HandsOutWhatTheDriverReturned) {
  Load();
  bus_.answers["ibdev"] = [] { return GpibOutcome::Failure(7); };
  const GpibDriver::Device device = driver_.ibdev(0, 5, 0, 11);
  EXPECT_EQ(device.descriptor, -1);
  EXPECT_TRUE(device.status.Failed());
  EXPECT_EQ(device.status.iberr, 7);
}

TEST_F(GpibDriverTest, Cells_AreCopiedInto16Bits) {
  Load();
  Answer({.status = 0x12345678, .error = 0x1FFFE, .count = 0x18000, .long_count = 0x18001});
  const GpibStatus status = Call();
  EXPECT_EQ(status.ibsta, 0x5678);
  EXPECT_EQ(status.iberr, -2);
  EXPECT_EQ(status.ibcnt, -32768);
  EXPECT_EQ(status.ibcntl, 0x18001);
}

TEST_F(GpibDriverTest, SecondCall_DoesNotSeeTheFirstOnesFailure) {
  Load();
  Answer(GpibOutcome::Failure(14));
  EXPECT_TRUE(Call().Failed());
  bus_.answers.clear();
  EXPECT_FALSE(Call().Failed());
}

// The function's own result is the status then; the number of the error and the count stay in the host's
// cells.
TEST_F(GpibDriverTest, HostRegisteredCellsOfItsOwn_TheReturnedWordIsTheStatus) {
  Load();
  for (const std::int32_t word : {0x0100, 0xC100}) {
    Answer({.status = word, .error = 6, .count = 7});
    CallAndLoseTheCells();
    const GpibStatus status = Call();
    EXPECT_EQ(status.ibsta, Low16(word));
    EXPECT_EQ(status.iberr, 0);
    EXPECT_EQ(status.ibcnt, 0);
    EXPECT_LE(status.ibcntl, 0);
  }
}

TEST_F(GpibDriverTest, HostRegisteredCellsOfItsOwn_OfIbdevTheDescriptorIsTheStatus) {
  Load();
  CallAndLoseTheCells();
  const GpibDriver::Device device = driver_.ibdev(0, 5, 0, 11);
  EXPECT_EQ(device.descriptor, 7);
  EXPECT_FALSE(device.status.Failed());
  CallAndLoseTheCells();
  bus_.answers["ibdev"] = [] { return GpibOutcome::Failure(7); };
  ExpectUnknownFailure(driver_.ibdev(0, 5, 0, 11).status);
}

TEST_F(GpibDriverTest, HostRegisteredCellsOfItsOwn_ReadWithoutACountFails_NextRegistersAgain) {
  Load();
  CallAndLoseTheCells();
  bus_.waiting = "abc";
  std::array<char, 5> buffer{};
  ExpectUnknownFailure(driver_.ibrd(7, buffer));
  bus_.waiting = "de";
  EXPECT_EQ(driver_.ibrd(7, buffer).ibcntl, 2);
  EXPECT_EQ(bus_.registrations, (Calls{"register", "register", "unregister", "register"}));
  bus_.registrations.clear();
  threads_.EndThread();
  EXPECT_EQ(bus_.registrations, (Calls{"unregister"})) << "there is no doubt any more whose cells these are";
}

TEST_F(GpibDriverTest, HostRegisteredCellsOfItsOwn_TheyAreNotUnregisteredAtTheThreadsEnd) {
  Load();
  CallAndLoseTheCells();
  Call();
  threads_.EndThread();
  EXPECT_EQ(bus_.registrations, (Calls{"register", "register"})) << "the second one is refused";
}

TEST_F(GpibDriverTest, DriverReportsFailuresOnly_SuccessesAreSuccessesAndFailuresHaveTheirNumber) {
  Load();
  bus_.reports_failures_only = true;
  EXPECT_FALSE(driver_.ibdev(0, 5, 0, 11).status.Failed());
  EXPECT_FALSE(driver_.ibwrt(7, "abc").Failed());
  Answer(GpibOutcome::Failure(14));
  EXPECT_EQ(Call().iberr, 14);
  EXPECT_FALSE(driver_.ibwrt(7, "abc").Failed());
  // But nobody knows how long a reply is.
  std::array<char, 50> buffer{};
  EXPECT_TRUE(driver_.ibrd(7, buffer).Failed());
}

// Or the driver would go on writing into cells that are no more.
TEST_F(GpibDriverTest, DriverReportsFailuresOnly_ThreadIsUnregisteredAtItsEnd) {
  Load();
  bus_.reports_failures_only = true;
  Call();
  threads_.EndThread();
  EXPECT_TRUE(bus_.Registered().empty());
}

TEST_F(GpibDriverTest, FirstCallOfAThread_RegistersIt_LaterOnesDoNot) {
  Load();
  EXPECT_TRUE(bus_.registrations.empty());
  Call();
  Call();
  EXPECT_EQ(bus_.registrations, (Calls{"register"}));
}

TEST_F(GpibDriverTest, RegisteredWithOtherCells_UnregistersAndRegistersAgain) {
  bus_.registration_results = {1, 0};
  Load();
  EXPECT_FALSE(Call().Failed());
  EXPECT_EQ(bus_.registrations, (Calls{"register", "unregister", "register"}));
  Call();
  EXPECT_EQ(bus_.registrations.size(), 3u);
}

// The thread counts as registered then, until a call shows that it is not.
TEST_F(GpibDriverTest, RegisteredWithOtherCellsTwice_CallIsMade_NextOneTriesAgain) {
  bus_.registration_results = {1, 1};
  Load();
  EXPECT_FALSE(Call().Failed());
  EXPECT_EQ(bus_.registrations, (Calls{"register", "unregister", "register"}));
  Answer({.count = 7});
  EXPECT_EQ(Call().ibcnt, 7);
}

TEST_F(GpibDriverTest, RegistrationRefused_CallFailsWithoutADriverCall_NextOneTriesAgain) {
  for (const int result : {2, 3, 4, -1}) {
    SCOPED_TRACE(result);
    GpibThreadsFake threads;
    GpibDriver driver(bus_, threads);
    driver.Load(L"[source]");
    bus_.registrations.clear();
    bus_.heard.clear();
    bus_.registration_results = {result, result};
    ExpectUnknownFailure(driver.ibclr(7));
    ExpectUnknownFailure(driver.ibclr(7));
    EXPECT_TRUE(bus_.heard.empty());
    const bool unregisters = result == 2 || result == 3;
    EXPECT_EQ(bus_.registrations, unregisters ? (Calls{"register", "unregister", "register", "unregister"})
                                              : (Calls{"register", "register"}));
    EXPECT_FALSE(driver.ibclr(7).Failed());
    EXPECT_EQ(bus_.heard, (Calls{"ibclr(7)"}));
  }
}

TEST_F(GpibDriverTest, RefusedThread_IbdevHandsOutNoDescriptor) {
  bus_.registration_results = {2};
  Load();
  EXPECT_EQ(driver_.ibdev(0, 5, 0, 11).descriptor, -1);
}

TEST_F(GpibDriverTest, ThreadEnds_IsUnregisteredOnIt) {
  Load();
  std::thread([this] {
    Call();
    EXPECT_TRUE(bus_.Registered().contains(std::this_thread::get_id()));
    threads_.EndThread();
  }).join();
  EXPECT_TRUE(bus_.Registered().empty());
  EXPECT_EQ(bus_.registrations, (Calls{"register", "unregister"}));
}

TEST_F(GpibDriverTest, ThreadThatCouldNotBeRegistered_IsNotUnregisteredAtItsEnd) {
  bus_.registration_results = {4};
  Load();
  std::thread([this] {
    Call();
    threads_.EndThread();
  }).join();
  EXPECT_EQ(bus_.registrations, (Calls{"register"}));
}

TEST_F(GpibDriverTest, TwoThreads_NeverSeeEachOthersStatus) {
  constexpr int kRounds = 2000;
  Load();
  const std::thread::id here = std::this_thread::get_id();
  bus_.answers["ibclr"] = [here] {
    return std::this_thread::get_id() == here ? GpibOutcome{.count = 50} : GpibOutcome::Failure(2);
  };
  std::thread other([this] {
    for (int i = 0; i < kRounds; ++i) {
      const GpibStatus status = Call();
      ASSERT_TRUE(status.Failed());
      ASSERT_EQ(status.iberr, 2);
      ASSERT_EQ(status.ibcnt, 0);
    }
    threads_.EndThread();
  });
  for (int i = 0; i < kRounds; ++i) {
    const GpibStatus status = Call();
    EXPECT_FALSE(status.Failed());
    EXPECT_EQ(status.ibcnt, 50);
  }
  other.join();
  EXPECT_EQ(bus_.registrations, (Calls{"register", "register", "unregister"}));
}

}  // namespace
}  // namespace kesp
