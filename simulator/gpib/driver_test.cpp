// The frame of the simulated driver's calls: threads, planned failures, record, and the exchange of the bus.
#include "simulator/gpib/driver.h"

#include <gtest/gtest.h>

#include "simulator/gpib/driver_fixture.h"

namespace kesp::simulator::gpib {
namespace {

class SimulatedDriverTest : public DriverFixture {
 protected:
  std::int32_t other_[4] = {-1, -1, -1, -1};
  const Cells other_cells_{&other_[0], &other_[1], &other_[2], &other_[3]};
};

TEST_F(SimulatedDriverTest, Outcomes_GoToTheCellsOfTheCallingThreadOnly) {
  driver_.Register(22, other_cells_);
  driver_.Ibclr(22, 1);
  EXPECT_EQ(other_[0], kError | kComplete);
  EXPECT_EQ(status_, -1);
  EXPECT_EQ(Open(5), 1);
  EXPECT_EQ(status_, kComplete);
  EXPECT_EQ(other_[0], kError | kComplete);
}

TEST_F(SimulatedDriverTest, AThreadThatIsNotRegistered_StillGetsTheStatus) {
  EXPECT_EQ(driver_.Ibclr(22, 1), kError | kComplete);
  EXPECT_EQ(status_, -1);
}

TEST_F(SimulatedDriverTest, Unregister_SaysWhetherTheThreadWasRegistered) {
  EXPECT_EQ(driver_.Unregister(kClient), 0);
  EXPECT_EQ(driver_.Unregister(kClient), 1);
  EXPECT_EQ(driver_.Unregister(22), 1);
  Open(5);
  EXPECT_EQ(status_, -1) << "nothing is written any more";
}

TEST_F(SimulatedDriverTest, ThreadEnds_ForgetsTheRegistration) {
  driver_.ThreadEnds(kClient);
  Open(5);
  EXPECT_EQ(status_, -1);
}

TEST_F(SimulatedDriverTest, Load_ForgetsEverything) {
  Open(5);
  driver_.Load({});
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  EXPECT_EQ(driver_.Record(), "");
  EXPECT_EQ(Open(5), 1);
  EXPECT_EQ(driver_.Unregister(kClient), 1);
}

TEST_F(SimulatedDriverTest, PlannedFailure_DoesNothingElse) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}],
           "failures": [{"call": "ibwrt", "at": 1, "error": 14, "count": 2}, {"call": "ibonl", "at": 1, "error": 0}]})");
  const std::int32_t device = Open(5, 0, kThreeMilliseconds);
  EXPECT_EQ(Write(device, "A?"), kError | kComplete);
  EXPECT_EQ(Last(), (Outcome{kError | kComplete, 14, 2}));
  EXPECT_EQ(Read(device), "") << "the command did not reach the device";
  EXPECT_EQ(driver_.Ibonl(kClient, device, 0), kError | kComplete);
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
  Write(device, "A?");
  EXPECT_EQ(Read(device), "one\n");
}

TEST_F(SimulatedDriverTest, PlannedFailure_OfIbdev_OpensNothingWhateverItReturns) {
  Load(R"({"failures": [{"call": "ibdev", "at": 1, "error": 7},
                        {"call": "ibdev", "at": 2, "status": 256, "result": 40000}]})");
  EXPECT_EQ(Open(5), -1);
  EXPECT_EQ(Last(), FailedWith(7));
  EXPECT_EQ(Open(5), 40000);
  EXPECT_EQ(Last(), Outcome{});
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  EXPECT_EQ(Open(5), 1);
}

TEST_F(SimulatedDriverTest, UnusableBus_FailsEveryCall) {
  driver_.Load(UnusableBus());
  driver_.Register(kClient, Cells{&status_, &error_, &count_, &long_count_});
  EXPECT_EQ(Open(5), -1);
  EXPECT_EQ(Last(), FailedWith(kFileSystemError));
  EXPECT_EQ(driver_.Ibonl(kClient, 0, 0), kError | kComplete);
}

TEST_F(SimulatedDriverTest, Record_HasALineForEachCall) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}]})");
  const std::int32_t device = Open(5, 0, 6, 1, 0x40A);
  Write(device, "A?\n");
  Read(device, 10);
  driver_.Ibeos(kClient, device, 0);
  driver_.Ibclr(kClient, device);
  driver_.Ibonl(kClient, device, 0);
  driver_.Ibonl(22, 0, 0);
  driver_.Unregister(kClient);
  EXPECT_EQ(driver_.Record(),
            "1 RegisterGpibGlobalsForThread(4 cells) = 0\n"
            "1 ibdev(0,5,0,6,1,1034) = 1 sta 0100 err 0 cnt 0\n"
            "1 ibwrt(1,\"A?\\n\",3) = 256 sta 0100 err 0 cnt 3\n"
            "1 ibrd(1,[10 blanks],10) = 8448 sta 2100 err 0 cnt 4 \"one\\n\"\n"
            "1 ibeos(1,0) = 256 sta 0100 err 0 cnt 0\n"
            "1 ibclr(1) = 256 sta 0100 err 0 cnt 0\n"
            "1 ibonl(1,0) = 256 sta 0100 err 0 cnt 0\n"
            "2 ibonl(0,0) = 256 sta 0100 err 0 cnt 0\n"
            "1 UnregisterGpibGlobalsForThread() = 0\n");
}

TEST_F(SimulatedDriverTest, Record_HasCallsInTheOrderOfTheirCompletion) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}]})");
  const std::int32_t device = Open(5, 0, 0);
  waiting_.Meanwhile([&] { driver_.Ibwrt(22, device, "A?", 2); });
  Read(device, 10);
  const std::string record = driver_.Record();
  EXPECT_LT(record.find("2 ibwrt("), record.find("1 ibrd("));
}

TEST_F(SimulatedDriverTest, Record_OfARead_ShowsWhatTheBufferHeld) {
  Load(
      R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}], "failures": [{"call": "ibrd", "at": 3, "count": 3}]})");
  const std::int32_t device = Open(5);
  Write(device, "A?");
  std::string buffer("old\0", 4);
  driver_.Ibrd(kClient, device, buffer.data(), 2);
  EXPECT_EQ(LastLine(), "1 ibrd(1,[\"ol\"],2) = 256 sta 0100 err 0 cnt 2 \"on\"\n");
  driver_.Ibrd(kClient, device, buffer.data(), 4);
  EXPECT_EQ(LastLine(), "1 ibrd(1,[\"ond\\x00\"],4) = 8448 sta 2100 err 0 cnt 2 \"e\\n\"\n");
  driver_.Ibrd(kClient, device, buffer.data(), 4);
  EXPECT_EQ(LastLine(), "1 ibrd(1,[\"e\\nd\\x00\"],4) = 33024 sta 8100 err 0 cnt 3\n");
}

TEST_F(SimulatedDriverTest, Record_OfRegistrations_CountsDistinctCells) {
  std::int32_t cell = 0;
  driver_.Register(22, Cells{&cell, &cell, &error_, &count_});
  EXPECT_EQ(LastLine(), "2 RegisterGpibGlobalsForThread(3 cells) = 0\n");
  driver_.Register(33, Cells{&cell, &status_, nullptr, &count_});
  EXPECT_EQ(LastLine(), "3 RegisterGpibGlobalsForThread(3 cells) = 3\n");
}

TEST_F(SimulatedDriverTest, Record_OfAThreadThatEnds_IsOnlyOfARegisteredOne) {
  driver_.ThreadEnds(kClient);
  EXPECT_EQ(LastLine(), "1 thread ended, registered\n");
  const std::string before = driver_.Record();
  driver_.ThreadEnds(kClient);
  driver_.ThreadEnds(22);
  EXPECT_EQ(driver_.Record(), before);
}

TEST_F(SimulatedDriverTest, Record_TurnedOff_IsEmpty) {
  Load(R"({"record": false})");
  Open(5);
  driver_.ThreadEnds(kClient);
  EXPECT_EQ(driver_.Record(), "");
}

}  // namespace
}  // namespace kesp::simulator::gpib
