// Writing to and reading from the devices of the simulated bus.
#include <gtest/gtest.h>

#include "simulator/gpib/driver_fixture.h"
#include "simulator/gpib/time_out.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kDevices[] = R"({"devices": [
  {"gpib": {"primary": 5}, "commands": {"A?": "one", "B?": "two", "LONG?": "0123456789"}},
  {"gpib": {"primary": 6}, "end": false, "commands": {"A?": "one"}},
  {"gpib": {"primary": 7}, "delay_ms": 50, "commands": {"A?": "one"}},
  {"gpib": {"primary": 8}, "keeps_replies": true, "commands": {"A?": "one", "B?": "two"}},
  {"gpib": {"primary": 9}, "terminator": "", "reply_terminator": "\u0081", "commands": {"A?": "one\u0001"}}]})";

class SimulatedDriverTransferTest : public DriverFixture {
 protected:
  SimulatedDriverTransferTest() { Load(kDevices); }
};

TEST_F(SimulatedDriverTransferTest, Ibwrt_TransfersAllBytes) {
  const std::int32_t device = Open(5);
  EXPECT_EQ(Write(device, "A?\n"), kComplete);
  EXPECT_EQ(Last(), (Outcome{kComplete, 0, 3}));
}

TEST_F(SimulatedDriverTransferTest, Ibwrt_WithoutDevice_HasNoListener) {
  EXPECT_EQ(Write(Open(12), "A?\n"), kError | kComplete);
  EXPECT_EQ(Last(), FailedWith(kNoListener));
}

TEST_F(SimulatedDriverTransferTest, Buffers_ThatCannotBe_AreBadArguments) {
  const std::int32_t device = Open(5);
  char byte = 0;
  driver_.Ibwrt(kClient, device, nullptr, 3);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibwrt(kClient, device, "A?", -1);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibrd(kClient, device, nullptr, 3);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
  driver_.Ibrd(kClient, device, &byte, -1);
  EXPECT_EQ(Last(), FailedWith(kBadArgument));
}

TEST_F(SimulatedDriverTransferTest, NothingToTransfer_SucceedsAtOnce) {
  const std::int32_t device = Open(5);
  driver_.Ibwrt(kClient, device, nullptr, 0);
  EXPECT_EQ(Last(), Outcome{});
  driver_.Ibrd(kClient, device, nullptr, 0);
  EXPECT_EQ(Last(), Outcome{});
  EXPECT_EQ(waiting_.waits(), 0);
}

TEST_F(SimulatedDriverTransferTest, Ibrd_ReadsAReplyInPieces) {
  const std::int32_t device = Open(5);
  Write(device, "LONG?");
  EXPECT_EQ(Read(device, 4), "0123");
  EXPECT_EQ(Last(), (Outcome{kComplete, 0, 4}));
  EXPECT_EQ(Read(device, 4), "4567");
  EXPECT_EQ(Read(device, 4), "89\n");
  EXPECT_EQ(Last(), (Outcome{kComplete | kEnd, 0, 3}));
}

TEST_F(SimulatedDriverTransferTest, Ibrd_OfExactlyTheReply_HasEnd) {
  const std::int32_t device = Open(5);
  Write(device, "A?");
  EXPECT_EQ(Read(device, 4), "one\n");
  EXPECT_EQ(Last(), (Outcome{kComplete | kEnd, 0, 4}));
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WithNothingToSay_WaitsTheTimeOutOfEachCode) {
  for (std::int32_t code = 1; code < kTimeOutCodes; ++code) {
    const std::int32_t device = Open(5, 0, code);
    const std::int64_t begin = waiting_.Microseconds();
    EXPECT_EQ(Read(device), "");
    EXPECT_EQ(Last(), TimedOut());
    EXPECT_EQ(waiting_.Microseconds() - begin, TimeOutMicroseconds(code)) << code;
  }
}

TEST_F(SimulatedDriverTransferTest, TimeOutCodes_AreThoseOfTheDriver) {
  EXPECT_EQ(TimeOutMicroseconds(0), kNever);
  EXPECT_EQ(TimeOutMicroseconds(1), 10);
  EXPECT_EQ(TimeOutMicroseconds(2), 30);
  for (std::int32_t code = 3; code < kTimeOutCodes; ++code)
    EXPECT_EQ(TimeOutMicroseconds(code), 10 * TimeOutMicroseconds(code - 2)) << code;
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WithoutDevice_TimesOut) {
  EXPECT_EQ(Read(Open(12, 0, kThreeMilliseconds)), "");
  EXPECT_EQ(Last(), TimedOut());
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WithoutEnd_KeepsWhatHadComeByTheTimeOut) {
  const std::int32_t device = Open(6, 0, kThreeMilliseconds);
  Write(device, "A?");
  EXPECT_EQ(Read(device), "one\n");
  EXPECT_EQ(Last(), TimedOut(4));
  Write(device, "A?");
  EXPECT_EQ(Read(device, 4), "one\n");
  EXPECT_EQ(Last(), (Outcome{kComplete, 0, 4}));
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WithoutTimeOut_WaitsUntilAReplyComes) {
  const std::int32_t reader = Open(5, 0, 0);
  const std::int32_t writer = Open(5);
  waiting_.Meanwhile([&] { driver_.Ibwrt(99, writer, "A?", 2); });
  EXPECT_EQ(Read(reader), "one\n");
  EXPECT_GE(waiting_.wakes(), 1) << "whoever waits is to be told of a command";
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WhenItsDescriptorIsClosedMeanwhile_IsAborted) {
  const std::int32_t device = Open(5, 0, 0);
  waiting_.Meanwhile([&] { driver_.Ibonl(99, device, 0); });
  Read(device);
  EXPECT_EQ(Last(), FailedWith(kAborted));
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WhenItsDescriptorIsClosedAndGivenToAnotherMeanwhile_IsAborted) {
  const std::int32_t device = Open(5, 0, 0);
  waiting_.Meanwhile([&] {
    driver_.Ibonl(99, device, 0);
    EXPECT_EQ(Open(6, 0, 0), device);
  });
  Read(device);
  EXPECT_EQ(Last(), FailedWith(kAborted));
}

TEST_F(SimulatedDriverTransferTest, Ibonl_WakesWhoWaitsAtTheDescriptor) {
  const std::int32_t device = Open(5);
  const int before = waiting_.wakes();
  driver_.Ibonl(kClient, device, 0);
  EXPECT_GT(waiting_.wakes(), before);
}

TEST_F(SimulatedDriverTransferTest, Ibrd_WhenTheBusIsReplacedMeanwhile_IsAbortedWithoutATrace) {
  const std::int32_t device = Open(5, 0, 0);
  waiting_.Meanwhile([&] { driver_.Load(ReadBus(kDevices)); });
  char byte = 'x';
  EXPECT_EQ(driver_.Ibrd(kClient, device, &byte, 1), kError | kComplete);
  EXPECT_EQ(driver_.Record(), "");
  EXPECT_EQ(Last().status, kComplete) << "its registration is forgotten";
}

TEST_F(SimulatedDriverTransferTest, Delay_PassesBeforeTheReplyBegins) {
  const std::int32_t patient = Open(7);
  const std::int64_t begin = waiting_.Microseconds();
  Write(patient, "A?");
  EXPECT_EQ(waiting_.Microseconds(), begin);
  EXPECT_EQ(Read(patient), "one\n");
  EXPECT_EQ(waiting_.Microseconds() - begin, 50'000);
}

TEST_F(SimulatedDriverTransferTest, Delay_LongerThanTheTimeOut_LeavesTheReplyForALaterRead) {
  const std::int32_t device = Open(7, 0, 8);  // 30 ms
  Write(device, "A?");
  EXPECT_EQ(Read(device), "");
  EXPECT_EQ(Last(), TimedOut());
  EXPECT_EQ(Read(device), "one\n");
}

TEST_F(SimulatedDriverTransferTest, NewCommand_DropsTheRestOfAnOldReply) {
  const std::int32_t device = Open(5);
  Write(device, "A?");
  EXPECT_EQ(Read(device, 1), "o");
  Write(device, "B?");
  EXPECT_EQ(Read(device), "two\n");
}

TEST_F(SimulatedDriverTransferTest, NewCommand_WhereRepliesAreKept_QueuesItsOwn) {
  const std::int32_t device = Open(8);
  Write(device, "A?");
  EXPECT_EQ(Read(device, 1), "o");
  Write(device, "B?");
  EXPECT_EQ(Read(device), "ne\n");
  EXPECT_EQ(Read(device), "two\n");
}

TEST_F(SimulatedDriverTransferTest, WithoutEnd_ACommandIsCompleteAtItsTerminatorOnly) {
  const std::int32_t device = Open(5, 0, kThreeMilliseconds, 0);
  Write(device, "A");
  Write(device, "?");
  EXPECT_EQ(Read(device), "");
  Write(device, "\n");
  EXPECT_EQ(Read(device), "one\n");
}

TEST_F(SimulatedDriverTransferTest, EndOfStringInWriting_SendsEnd) {
  const std::int32_t device = Open(5, 0, kThreeMilliseconds, 0, EndOfString::kEndsWrites | '\r');
  Write(device, "A?\r");
  EXPECT_EQ(Read(device), "one\n");
  Write(device, "A?\r\n");
  EXPECT_EQ(Read(device), "one\n") << "a terminator after END is no new command";
}

TEST_F(SimulatedDriverTransferTest, EndOfStringInReading_EndsTheReadWithThatByte) {
  const std::int32_t device = Open(5, 0, kTenSeconds, 1, EndOfString::kEndsReads | '4');
  Write(device, "LONG?");
  EXPECT_EQ(Read(device), "01234");
  EXPECT_EQ(Last(), (Outcome{kComplete | kEnd, 0, 5}));
  EXPECT_EQ(Read(device), "56789\n");
}

TEST_F(SimulatedDriverTransferTest, EndOfString_ComparesSevenBitsUnlessToldEight) {
  const std::int32_t device = Open(9, 0, kTenSeconds, 1, EndOfString::kEndsReads | 0x01);
  Write(device, "A?");
  EXPECT_EQ(Read(device), "one\x01");
  EXPECT_EQ(Read(device), "\x81") << "0x81 is 0x01 in seven bits";
  Write(device, "A?");
  driver_.Ibeos(kClient, device, EndOfString::kEndsReads | EndOfString::kEightBits | 0x81);
  EXPECT_EQ(Read(device), "one\x01\x81");
  Write(device, "A?");
  driver_.Ibeos(kClient, device, EndOfString::kEndsReads | 0x81);
  EXPECT_EQ(Read(device), "one\x01");
}

}  // namespace
}  // namespace kesp::simulator::gpib
