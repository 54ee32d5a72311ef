// The simulated driver's calls: descriptors and arguments, planned failures, the record, and the exchange of
// the bus.
#include "simulator/gpib/driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "simulator/gpib/driver_fixture.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kTwoDevices[] = R"({"devices": [
  {"gpib": {"primary": 5}, "commands": {"A?": "five"}},
  {"gpib": {"primary": 7, "secondary": 2}, "commands": {"A?": "seven, two"}}]})";

class DriverTest : public DriverFixture {
 protected:
  // All calls that take a descriptor, in the order of their names.
  std::vector<Outcome> CallAllWith(std::int32_t descriptor) {
    char byte = 0;
    std::vector<Outcome> outcomes;
    const std::function<std::int32_t()> calls[] = {
        [&] { return driver_.Ibclr(kClient, descriptor); },
        [&] { return driver_.Ibeos(kClient, descriptor, 0); },
        [&] { return driver_.Ibrd(kClient, descriptor, &byte, 1); },
        [&] { return driver_.Ibrsp(kClient, descriptor, &byte); },
        [&] { return driver_.Ibwrt(kClient, descriptor, "A?", 2); },
        [&] { return driver_.Ibonl(kClient, descriptor, 0); }};
    for (const auto& call : calls) {
      EXPECT_EQ(call(), status_);
      outcomes.push_back(Last());
    }
    return outcomes;
  }
};

TEST_F(DriverTest, Ibdev_ReturnsTheLowestDescriptorThatIsFreeAndKnowsNothingOfItsFormerUse) {
  Load(kTwoDevices);
  EXPECT_EQ(Open(7, 2, kTenSeconds, 1, EndOfString::kEndsReads | 'v'), 1);
  for (const std::int32_t next : {2, 3}) EXPECT_EQ(Open(30), next) << "without a device, too";
  for (const std::int32_t closed : {0, 1, 2}) driver_.Ibonl(kClient, closed, 0);
  for (const std::int32_t next : {1, 2, 4}) EXPECT_EQ(Open(5), next);
  EXPECT_EQ(driver_.OpenDescriptors(), 4);
  Write(1, "A?");
  EXPECT_EQ(Read(1), "five\n");
}

TEST_F(DriverTest, Ibdev_TakesArgumentsWithinTheirLimitsOnly) {
  const struct {
    Driver::DeviceArguments arguments;
    std::int32_t error;  // -1: none
  } cases[] = {
      {{0, {0, 0}, 0, 0, 0}, -1},
      {{0, {30, 126}, 17, 1, 0x1CFF}, -1},
      {{0, {5, 1}, 10, 1, 0xFF}, -1},
      {{0, {5, 30}, 10, 1, 0}, -1},
      {{0, {5, 96}, 10, 1, 0}, -1},
      {{-1, {5, 0}, 10, 1, 0}, kNoBoard},
      {{1, {5, 0}, 10, 1, 0}, kNoBoard},
      {{0, {-1, 0}, 10, 1, 0}, kBadArgument},
      {{0, {31, 0}, 10, 1, 0}, kBadArgument},
      {{0, {5, -1}, 10, 1, 0}, kBadArgument},
      {{0, {5, 31}, 10, 1, 0}, kBadArgument},
      {{0, {5, 95}, 10, 1, 0}, kBadArgument},
      {{0, {5, 127}, 10, 1, 0}, kBadArgument},
      {{0, {5, 0}, -1, 1, 0}, kBadArgument},
      {{0, {5, 0}, 18, 1, 0}, kBadArgument},
      {{0, {5, 0}, 10, 2, 0}, kBadArgument},
      {{0, {5, 0}, 10, -1, 0}, kBadArgument},
      {{0, {5, 0}, 10, 1, 0x100}, kBadArgument},
      {{0, {5, 0}, 10, 1, 0x2000}, kBadArgument},
      {{0, {5, 0}, 10, 1, -1}, kBadArgument},
  };
  for (const auto& [arguments, error] : cases) {
    const std::int32_t descriptor = driver_.Ibdev(kClient, arguments);
    EXPECT_EQ(descriptor > 0, error == -1);
    EXPECT_EQ(Last(), error == -1 ? Outcome{} : FailedWith(error)) << LastLine();
    EXPECT_EQ(descriptor == -1, error != -1);
  }
}

TEST_F(DriverTest, SecondaryAddress_IsTheSameWithAndWithoutItsOffsetUnlessTheDriverInsists) {
  Load(kTwoDevices);
  for (const std::int32_t secondary : {2, 98}) {
    const std::int32_t device = Open(7, secondary);
    Write(device, "A?");
    EXPECT_EQ(Read(device), "seven, two\n");
  }
  for (const std::int32_t secondary : {0, 96, 3}) {
    Write(Open(7, secondary), "A?");
    EXPECT_EQ(Last(), FailedWith(kNoListener)) << secondary;
  }
  Load(R"({"secondary_offset_required": true})");
  for (const std::int32_t secondary : {1, 30}) EXPECT_EQ(Open(7, secondary), -1);
  for (const std::int32_t secondary : {0, 98}) EXPECT_GT(Open(7, secondary), 0);
}

TEST_F(DriverTest, CallsWithADescriptorThatIsNone_Fail) {
  Load(kTwoDevices);
  const std::int32_t closed = Open(5);
  EXPECT_EQ(driver_.Ibonl(kClient, closed, 1), kComplete) << "stays open";
  EXPECT_EQ(driver_.Ibonl(kClient, closed, 0), kComplete);
  for (const std::int32_t descriptor : {closed, closed + 1, -1, 40000})
    EXPECT_EQ(CallAllWith(descriptor), std::vector<Outcome>(6, FailedWith(kSystemError)));
  Open(5);
  std::vector<Outcome> of_the_board(5, FailedWith(kBadArgument));
  of_the_board.push_back(Outcome{});
  EXPECT_EQ(CallAllWith(0), of_the_board);
  EXPECT_EQ(driver_.OpenDescriptors(), 1) << "the board offline closes no device";
}

TEST_F(DriverTest, Ibeos_WithUnknownBits_ChangesNothing) {
  Load(kTwoDevices);
  const std::int32_t device = Open(5, 0, kTenSeconds, 1, EndOfString::kEndsReads | 'v');
  for (const std::int32_t value : {0x100, 0x2000, -1}) {
    EXPECT_EQ(driver_.Ibeos(kClient, device, value), kError | kComplete);
    EXPECT_EQ(Last(), FailedWith(kBadArgument));
  }
  Write(device, "A?");
  EXPECT_EQ(Read(device), "fiv");
}

TEST_F(DriverTest, Ibclr_OnAnEmptyBus_HasNoListener) {
  driver_.Ibclr(kClient, Open(5));
  EXPECT_EQ(Last(), FailedWith(kNoListener));
}

TEST_F(DriverTest, Outcomes_GoToTheCellsOfTheCallingThreadOnly) {
  std::int32_t other[] = {-1, -1, -1, -1};
  EXPECT_EQ(driver_.Register(22, {&other[0], &other[1], &other[2], &other[3]}), 0);
  EXPECT_EQ(driver_.Ibclr(22, 1), kError | kComplete);
  EXPECT_EQ(driver_.Ibclr(33, 1), kError | kComplete) << "not registered";
  EXPECT_EQ(other[0], kError | kComplete);
  EXPECT_EQ(status_, -1);
  EXPECT_EQ(driver_.Unregister(kClient), 0);
  EXPECT_EQ(driver_.Unregister(kClient), 1);
  driver_.ThreadEnds(22);
  other[0] = -1;
  Open(5);
  driver_.Ibclr(22, 9);
  EXPECT_EQ(status_ + other[0], -2) << "nothing is written any more";
}

// Each row: failures, and what comes of ibdev, ibclr, ibeos, ibwrt, ibclr as error numbers; -1 for none.
TEST_F(DriverTest, PlannedFailures_AreThoseThatFitFirst) {
  const std::pair<std::string, std::vector<std::int32_t>> cases[] = {
      {"", {-1, -1, -1, -1, -1}},
      {R"({"call": "ibclr", "at": 2, "error": 14})", {-1, -1, -1, -1, 14}},
      {R"({"call": "ibclr", "error": 1})", {-1, 1, -1, -1, 1}},
      {R"({"call": "*", "at": 3, "error": 14})", {-1, -1, 14, -1, -1}},
      {R"({"call": "ibclr", "at": 2, "error": 15}, {"call": "*", "error": 16})", {16, 16, 16, 16, 15}},
  };
  for (const auto& [failures, errors] : cases) {
    Load(R"({"devices": [{"gpib": {"primary": 5}}], "failures": [)" + failures + "]}");
    std::vector<std::int32_t> heard;
    const auto note = [&](std::int32_t /*result*/) {
      heard.push_back((status_ & kError) != 0 ? error_ : -1);
    };
    note(Open(5));
    note(driver_.Ibclr(kClient, 1));
    note(driver_.Ibeos(kClient, 1, 0));
    note(Write(1, "x"));
    note(driver_.Ibclr(kClient, 1));
    EXPECT_EQ(heard, errors) << failures;
  }
}

TEST_F(DriverTest, PlannedFailure_ReportsAsToldAndDoesNothingElse) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}], "failures": [
           {"call": "ibdev", "at": 1, "error": 7}, {"call": "ibdev", "at": 2, "status": 256, "result": 40000},
           {"call": "ibwrt", "at": 1, "error": 14, "count": 2}, {"call": "ibwrt", "at": 2, "status": 32767, "result": 5},
           {"call": "ibonl", "at": 1}]})");
  EXPECT_EQ(Open(5), -1);
  EXPECT_EQ(Last(), FailedWith(7));
  EXPECT_EQ(Open(5), 40000);
  EXPECT_EQ(Last(), Outcome{});
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  const std::int32_t device = Open(5, 0, kThreeMilliseconds);
  EXPECT_EQ(Write(device, "A?"), kError | kComplete);
  EXPECT_EQ(Last(), (Outcome{kError | kComplete, 14, 2}));
  EXPECT_EQ(Write(device, "A?"), 5);
  EXPECT_EQ(Last(), (Outcome{32767, 0, 0}));
  EXPECT_EQ(Read(device), "") << "the commands did not reach the device";
  EXPECT_EQ(driver_.Ibonl(kClient, device, 0), kError | kComplete);
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
  driver_.Load(UnusableBus());
  driver_.Register(kClient, Cells{&status_, &error_, &count_, &long_count_});
  EXPECT_EQ(Open(5), -1);
  EXPECT_EQ(Last(), FailedWith(kFileSystemError));
}

TEST_F(DriverTest, Load_ForgetsEverything) {
  Open(5);
  driver_.Load({});
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
  EXPECT_EQ(driver_.Record(), "");
  EXPECT_EQ(Open(5), 1);
  EXPECT_EQ(driver_.Unregister(kClient), 1);
}

TEST_F(DriverTest, Record_HasALineForEachCallInTheOrderOfTheirCompletion) {
  Load(R"({"devices": [{"gpib": {"primary": 5}, "commands": {"A?": "one"}}], "failures": [
           {"call": "ibrd", "at": 4, "count": 3}, {"call": "ibclr", "at": 2, "error": 70000, "status": -1, "count": -5}]})");
  const std::int32_t device = Open(5, 0, 6, 1, 0x40A);
  Write(device, "A?\n\x01");
  Read(device, 10);
  driver_.Ibeos(kClient, device, 0);
  std::string buffer("old\0", 4);
  waiting_.Meanwhile([&] { driver_.Ibwrt(22, device, "A?", 2); });
  driver_.Ibrd(kClient, device, buffer.data(), 2);
  driver_.Ibrd(kClient, device, buffer.data(), 4);
  driver_.Ibrd(kClient, device, buffer.data(), 4);
  driver_.Ibclr(kClient, device);
  driver_.Ibclr(kClient, device);
  driver_.Ibonl(22, 0, 0);
  driver_.Unregister(kClient);
  driver_.Register(22, Cells{&status_, &status_, &error_, &count_});
  driver_.Register(33, Cells{&status_, &error_, nullptr, &count_});
  driver_.ThreadEnds(22);
  driver_.ThreadEnds(33);
  EXPECT_EQ(driver_.Record(),
            "1 RegisterGpibGlobalsForThread(4 cells) = 0\n"
            "1 ibdev(0,5,0,6,1,1034) = 1 sta 0100 err 0 cnt 0\n"
            "1 ibwrt(1,\"A?\\n\\x01\",4) = 256 sta 0100 err 0 cnt 4\n"
            "1 ibrd(1,[10 blanks],10) = 49408 sta C100 err 6 cnt 0\n"
            "1 ibeos(1,0) = 256 sta 0100 err 0 cnt 0\n"
            "2 ibwrt(1,\"A?\",2) = 256 sta 0100 err 0 cnt 2\n"
            "1 ibrd(1,[\"ol\"],2) = 256 sta 0100 err 0 cnt 2 \"on\"\n"
            "1 ibrd(1,[\"ond\\x00\"],4) = 8448 sta 2100 err 0 cnt 2 \"e\\n\"\n"
            "1 ibrd(1,[\"e\\nd\\x00\"],4) = 33024 sta 8100 err 0 cnt 3\n"
            "1 ibclr(1) = 256 sta 0100 err 0 cnt 0\n"
            "1 ibclr(1) = -1 sta FFFFFFFF err 70000 cnt -5\n"
            "2 ibonl(0,0) = 256 sta 0100 err 0 cnt 0\n"
            "1 UnregisterGpibGlobalsForThread() = 0\n"
            "2 RegisterGpibGlobalsForThread(3 cells) = 0\n"
            "3 RegisterGpibGlobalsForThread(3 cells) = 3\n"
            "2 thread ended, registered\n");
  Load(R"({"record": false})");
  Open(5);
  driver_.ThreadEnds(kClient);
  EXPECT_EQ(driver_.Record(), "");
}

TEST_F(DriverTest, Record_KeepsTheLastLinesAndTheFirstBytes) {
  Load(kTwoDevices);
  const std::int32_t device = Open(5);
  Write(device, std::string(CallRecord::kMostBytes, 'x'));
  EXPECT_NE(LastLine().find("x\",4096)"), std::string::npos);
  Write(device, std::string(CallRecord::kMostBytes + 1, 'x'));
  EXPECT_NE(LastLine().find("x...\",4097)"), std::string::npos);
  for (std::size_t i = 0; i < CallRecord::kMostLines; ++i) driver_.Ibonl(kClient, 0, 0);
  const std::string record = driver_.Record();
  EXPECT_EQ(static_cast<std::size_t>(std::count(record.begin(), record.end(), '\n')), CallRecord::kMostLines);
  EXPECT_EQ(record.find("ibwrt"), std::string::npos);
}

}  // namespace
}  // namespace kesp::simulator::gpib
