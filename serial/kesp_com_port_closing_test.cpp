// Unit tests of closing a port behind bytes that its adapter has not sent.
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

// 300 bit/s, and an adapter that takes all bytes at once and loses them when its port is closed.
class CKespCOMPort3ClosingTest : public SerialConversationTest {
 protected:
  CKespCOMPort3ClosingTest() {
    port_.SetBaudRate(EKespBaudRate3::br300);
    Open();
    ports_.line.ms_per_character = 33;
    ports_.line.has_adapter = true;
  }

  std::int32_t TimeToClose() {
    const std::int32_t start = Now();
    port_.ClosePort();
    EXPECT_FALSE(ports_.line.open);
    return Now() - start;
  }
};

TEST_F(CKespCOMPort3ClosingTest, BehindACommand_LeavesItTheTimeThatItNeeds) {
  port_.WriteLine(L"123456789");
  const std::int32_t milliseconds = TimeToClose();
  EXPECT_EQ(ports_.line.left, "123456789\r");
  EXPECT_GE(milliseconds, 333);
  EXPECT_LT(milliseconds, 350);
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3ClosingTest, TimeHasPassedSince_OnlyTheRestIsWaitedFor) {
  port_.WriteLine(L"123456789");
  environment_.clock.Advance(300);
  EXPECT_LT(TimeToClose(), 50);
  EXPECT_EQ(ports_.line.left, "123456789\r");
}

TEST_F(CKespCOMPort3ClosingTest, BehindAReply_ClosesAtOnceWithoutAnotherLook) {
  ports_.line.Answer("123456789\r", "1\r\n", 400);
  port_.WriteLine(L"123456789");
  std::wstring reply;
  port_.ReadLine(reply);
  // The clock says that the line is busy; the reply says that it is not.
  ports_.line.ms_per_character = 0;
  const int polls = ports_.line.polls;
  EXPECT_EQ(TimeToClose(), 0);
  EXPECT_EQ(ports_.line.polls, polls);
}

TEST_F(CKespCOMPort3ClosingTest, OpenedAnew_IsClosedBehindTheCommandToo) {
  port_.WriteLine(L"123456789");
  port_.OpenPort();
  EXPECT_EQ(ports_.line.left, "123456789\r");
}

TEST_F(CKespCOMPort3ClosingTest, Release_HasItsTimeToo) {
  port_.SetUseSmartSwitch(true);
  port_.ClosePort();
  EXPECT_EQ(ports_.line.left, "\x1B\x02\x02\x04");
}

TEST_F(CKespCOMPort3ClosingTest, LongCommand_ClosesAfterTenSeconds) {
  port_.WriteLine(std::wstring(2000, L'x'));
  const std::int32_t milliseconds = TimeToClose();
  EXPECT_GE(milliseconds, 10000);
  EXPECT_LT(milliseconds, 10010);
}

// Who closes a port that takes nothing does not want to wait.
TEST_F(CKespCOMPort3ClosingTest, DriverHoldsBytes_ClosesAtOnce) {
  ports_.line.drain = {5, 4, 3};
  events_.handlers[L"WriteUpdate"] = [&] { EXPECT_EQ(TimeToClose(), 0); };
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t"); }).number, 8018);
}

TEST_F(CKespCOMPort3ClosingTest, PortIsGone_ClosesAtOnceAndWithoutAFailure) {
  port_.WriteLine(L"123456789");
  ports_.line.FailCall(1, 8012);
  EXPECT_EQ(TimeToClose(), 0);
}

}  // namespace
}  // namespace kesp
