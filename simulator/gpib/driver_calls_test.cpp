// What each call of the simulated driver does on the bus, writing and reading aside.
#include <gtest/gtest.h>

#include "simulator/gpib/driver_fixture.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kTwoDevices[] = R"({"devices": [
  {"gpib": {"primary": 5}, "commands": {"A?": "five"}},
  {"gpib": {"primary": 7, "secondary": 2}, "commands": {"A?": "seven, two"}}]})";

class SimulatedDriverCallsTest : public DriverFixture {};

TEST_F(SimulatedDriverCallsTest, Ibdev_ReturnsTheLowestDescriptorThatIsFree) {
  for (const std::int32_t next : {1, 2, 3}) EXPECT_EQ(Open(5), next);
  for (const std::int32_t closed : {0, 1, 2}) driver_.Ibonl(kClient, closed, 0);
  for (const std::int32_t next : {1, 2, 4}) EXPECT_EQ(Open(6), next);
  EXPECT_EQ(driver_.OpenDescriptors(), 4);
}

TEST_F(SimulatedDriverCallsTest, Ibdev_OfADescriptorThatWasClosed_KnowsNothingOfIt) {
  Load(kTwoDevices);
  EXPECT_EQ(Open(7, 2, kTenSeconds, 1, EndOfString::kEndsReads | 'v'), 1);
  driver_.Ibonl(kClient, 1, 0);
  EXPECT_EQ(Open(5), 1);
  Write(1, "A?");
  EXPECT_EQ(Read(1), "five\n");
}

TEST_F(SimulatedDriverCallsTest, Ibdev_AtAnAddressWithoutDevice_Succeeds) {
  EXPECT_EQ(Open(30), 1);
  EXPECT_EQ(Last(), Outcome{});
}

TEST_F(SimulatedDriverCallsTest, Ibdev_OnAnotherBoard_HasNoBoard) {
  for (const std::int32_t board : {-1, 1, 99}) {
    EXPECT_EQ(driver_.Ibdev(kClient, {board, {5, 0}, 10, 1, 0}), -1);
    EXPECT_EQ(Last(), FailedWith(kNoBoard));
  }
}

TEST_F(SimulatedDriverCallsTest, Ibdev_WithArgumentsAtTheirLimits_Succeeds) {
  for (const std::int32_t primary : {0, 30}) EXPECT_GT(Open(primary), 0);
  for (const std::int32_t secondary : {0, 1, 30, 96, 126}) EXPECT_GT(Open(5, secondary), 0);
  for (const std::int32_t time_out : {0, 17}) EXPECT_GT(Open(5, 0, time_out), 0);
  for (const std::int32_t sends_end : {0, 1}) EXPECT_GT(Open(5, 0, 10, sends_end), 0);
  for (const std::int32_t end_of_string : {0, 0xFF, 0x1CFF}) EXPECT_GT(Open(5, 0, 10, 1, end_of_string), 0);
}

TEST_F(SimulatedDriverCallsTest, Ibdev_WithArgumentsPastTheirLimits_HasABadArgument) {
  const auto refused = [this](std::int32_t descriptor) {
    EXPECT_EQ(descriptor, -1);
    EXPECT_EQ(Last(), FailedWith(kBadArgument));
  };
  for (const std::int32_t primary : {-1, 31}) refused(Open(primary));
  for (const std::int32_t secondary : {-1, 31, 95, 127}) refused(Open(5, secondary));
  for (const std::int32_t time_out : {-1, 18}) refused(Open(5, 0, time_out));
  for (const std::int32_t sends_end : {-1, 2}) refused(Open(5, 0, 10, sends_end));
  for (const std::int32_t end_of_string : {0x100, 0x200, 0x2000, -1})
    refused(Open(5, 0, 10, 1, end_of_string));
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

TEST_F(SimulatedDriverCallsTest, SecondaryAddress_IsTheSameWithAndWithoutItsOffset) {
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
}

TEST_F(SimulatedDriverCallsTest, SecondaryAddress_WhereTheDriverInsistsOnTheOffset_IsRefusedWithoutIt) {
  Load(R"({"secondary_offset_required": true, "devices": [{"gpib": {"primary": 7, "secondary": 2}}]})");
  for (const std::int32_t secondary : {1, 2, 30}) {
    EXPECT_EQ(Open(7, secondary), -1);
    EXPECT_EQ(Last(), FailedWith(kBadArgument));
  }
  EXPECT_GT(Open(7, 98), 0);
  EXPECT_GT(Open(7, 0), 0);
}

TEST_F(SimulatedDriverCallsTest, Ibclr_DropsCommandAndReplyOfItsDeviceOnly) {
  Load(kTwoDevices);
  const std::int32_t five = Open(5, 0, kThreeMilliseconds);
  const std::int32_t seven = Open(7, 2, kThreeMilliseconds, 0);
  Write(five, "A?");
  Write(seven, "A?\nA");
  EXPECT_EQ(driver_.Ibclr(kClient, five), kComplete);
  EXPECT_EQ(Last(), Outcome{});
  EXPECT_EQ(Read(five), "");
  EXPECT_EQ(Last(), TimedOut());
  driver_.Ibclr(kClient, seven);
  Write(seven, "?\n");
  EXPECT_EQ(Read(seven), "") << "the first half of the command is gone";
}

TEST_F(SimulatedDriverCallsTest, Ibclr_WithOtherDevicesOnTheBus_NeedsNoneAtTheAddress) {
  Load(kTwoDevices);
  EXPECT_EQ(driver_.Ibclr(kClient, Open(12)), kComplete);
}

TEST_F(SimulatedDriverCallsTest, Ibclr_OnAnEmptyBus_HasNoListener) {
  driver_.Ibclr(kClient, Open(5));
  EXPECT_EQ(Last(), FailedWith(kNoListener));
}

TEST_F(SimulatedDriverCallsTest, CallsWithADescriptorThatIsNotOpen_Fail) {
  Load(kTwoDevices);
  char byte = 0;
  const std::int32_t closed = Open(5);
  driver_.Ibonl(kClient, closed, 0);
  for (const std::int32_t descriptor : {closed, closed + 1, -1, 40000}) {
    const std::int32_t failed = kError | kComplete;
    EXPECT_EQ(driver_.Ibclr(kClient, descriptor), failed);
    EXPECT_EQ(driver_.Ibeos(kClient, descriptor, 0), failed);
    EXPECT_EQ(driver_.Ibwrt(kClient, descriptor, "A?", 2), failed);
    EXPECT_EQ(driver_.Ibrd(kClient, descriptor, &byte, 1), failed);
    EXPECT_EQ(driver_.Ibonl(kClient, descriptor, 0), failed);
    EXPECT_EQ(Last(), FailedWith(kSystemError));
  }
}

TEST_F(SimulatedDriverCallsTest, CallsForDevices_WithTheBoardsDescriptor_HaveABadArgument) {
  Load(kTwoDevices);
  char byte = 0;
  driver_.Ibclr(kClient, 0);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibeos(kClient, 0, 0);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibwrt(kClient, 0, "A?", 2);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibrd(kClient, 0, &byte, 1);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
}

TEST_F(SimulatedDriverCallsTest, Ibeos_WithUnknownBits_HasABadArgumentAndChangesNothing) {
  Load(kTwoDevices);
  const std::int32_t device = Open(5, 0, kTenSeconds, 1, EndOfString::kEndsReads | 'v');
  for (const std::int32_t value : {0x100, 0x2000, -1}) {
    EXPECT_EQ(driver_.Ibeos(kClient, device, value), kError | kComplete);
    EXPECT_EQ(Last(), FailedWith(kBadArgument));
  }
  Write(device, "A?");
  EXPECT_EQ(Read(device), "fiv");
}

TEST_F(SimulatedDriverCallsTest, Ibeos_CountsFromTheNextRead) {
  Load(kTwoDevices);
  const std::int32_t device = Open(5);
  Write(device, "A?");
  EXPECT_EQ(driver_.Ibeos(kClient, device, EndOfString::kEndsReads | 'i'), kComplete);
  EXPECT_EQ(Read(device), "fi");
  driver_.Ibeos(kClient, device, 0);
  EXPECT_EQ(Read(device), "ve\n");
}

TEST_F(SimulatedDriverCallsTest, Ibonl_WithOne_KeepsTheDescriptorOpen) {
  Load(kTwoDevices);
  const std::int32_t device = Open(5);
  EXPECT_EQ(driver_.Ibonl(kClient, device, 1), kComplete);
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
  EXPECT_EQ(driver_.Ibonl(kClient, device, 0), kComplete);
  EXPECT_EQ(driver_.OpenDescriptors(), 0);
}

TEST_F(SimulatedDriverCallsTest, Ibonl_OfTheBoard_NeverFailsAndClosesNoDevice) {
  Open(5);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(driver_.Ibonl(kClient, 0, 0), kComplete);
  EXPECT_EQ(Last(), Outcome{});
  EXPECT_EQ(driver_.OpenDescriptors(), 1);
}

}  // namespace
}  // namespace kesp::simulator::gpib
