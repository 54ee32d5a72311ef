// Unit tests of the serial transport's output.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3OutputTest : public SerialConversationFixture {
 protected:
  CKespCOMPort3OutputTest() { Open(); }
};

TEST_F(CKespCOMPort3OutputTest, WriteLine_CommandIsFramedWrittenAndDrainedInOrder) {
  ports_.line.drain = {6, 2};
  EXPECT_TRUE(port_.WriteLine(L"*IDN?"));
  EXPECT_EQ(record_, (Lines{L"WriteBegin(*IDN?,1)", L"ClearOut", L"ClearIn", L"Output *IDN?<0D>",
                            L"WriteUpdate(6,1)", L"WriteUpdate(2,1)", L"WriteUpdate(0,1)", L"WriteEnd()"}));
  EXPECT_EQ(ports_.line.writes, std::vector<std::string>{"*IDN?\r"});
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_Logged_EveryStepHasItsLineInItsPlace) {
  StartLog();
  port_.WriteLine(L"SL", {}, {}, true);
  EXPECT_EQ(record_,
            (Lines{L"Log WriteLine...", L"WriteBegin(SL,1)", L"Log Clearing buffers...", L"ClearOut",
                   L"ClearIn", L"Log Sending CR to clear instrument buffer...", L"Output <0D>",
                   L"Log Clearing buffers...", L"ClearOut", L"ClearIn", L"Log Sending 'SL\r' on COM port 1",
                   L"Output SL<0D>", L"WriteUpdate(0,1)", L"WriteEnd()"}));
}

// The frames themselves are those of CommandFrame; the event tells the command as it was given.
TEST_F(CKespCOMPort3OutputTest, WriteLine_FrameIsMadeOfAllArgumentsInTheCodePage) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  port_.WriteLine(L"SL", L"01", L"100");
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  port_.WriteLine(L"*IDN?");
  port_.SetControllerStyle(EKespControllerStyle3::CS_KESP);
  port_.WriteLine(L" \x20AC\xE9\x0416");  // the euro sign, an e with acute, and a letter it has not
  port_.WriteLine();
  EXPECT_EQ(Outputs(), (Lines{L"<04>0011<02>SL100<03>-<0D>", L"", L"<80><E9>?<0D>", L"<0D>"}));
  EXPECT_EQ(Events()[6], L"WriteBegin( \x20AC\xE9\x0416,1)");
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_CrBefore_IsWrittenFiftyMillisecondsAheadAndPumps) {
  std::vector<std::int32_t> times;
  ports_.line.on_output = [&](const std::string&, const std::wstring&) { times.push_back(Now()); };
  EXPECT_TRUE(port_.WriteLine(L"t", {}, {}, true));
  EXPECT_EQ(ports_.line.writes, (std::vector<std::string>{"\r", "t\r"}));
  ASSERT_EQ(times.size(), 2u);
  // 4 ms until it has left, then 51 readings of the clock, the last of which is 50 ms after the first.
  EXPECT_EQ(times[1] - times[0], 55);
  EXPECT_EQ(environment_.pump.count(), 50);
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_CrBeforeOnASlowLine_LeavesOnce) {
  ports_.line.on_poll = [this] { environment_.clock.Advance(1); };
  for (const bool has_adapter : {false, true}) {
    SCOPED_TRACE(has_adapter);
    port_.SetBaudRate(EKespBaudRate3::br150);
    Open();
    ports_.line.ms_per_character = 67;
    ports_.line.has_adapter = has_adapter;
    ports_.line.left.clear();
    EXPECT_TRUE(port_.WriteLine(L"t", {}, {}, true));
    port_.ClosePort();
    EXPECT_EQ(ports_.line.left, "\rt\r");
  }
}

// The 50 ms count from its end on the line, which the adapter does not tell.
TEST_F(CKespCOMPort3OutputTest, WriteLine_CrBefore_WhatItBroughtIsDiscarded) {
  ports_.line.on_poll = [this] { environment_.clock.Advance(1); };
  ports_.line.Answer("t\r", "1.5\r\n");
  std::wstring reply;
  for (const auto& [rate, milliseconds] : {std::pair{6, 20u}, std::pair{0, 67u + 20u}}) {
    port_.SetBaudRate(Rate(rate));
    Open();
    ports_.line.Answer("\r", "error 1\r\n", milliseconds);
    EXPECT_TRUE(port_.WriteLine(L"t", {}, {}, true));
    EXPECT_TRUE(port_.ReadLine(reply));
    EXPECT_EQ(reply, L"1.5") << rate;
  }
}

// Then it is taken back, and the command waits for the line.
TEST_F(CKespCOMPort3OutputTest, WriteLine_CrBeforeDoesNotLeave_CommandFollowsAllTheSame) {
  ports_.line.drain.assign(3000, 1);
  const std::int32_t start = Now();
  EXPECT_TRUE(port_.WriteLine(L"t", {}, {}, true));
  EXPECT_EQ(Outputs(), (Lines{L"<0D>", L"t<0D>"}));
  EXPECT_GT(Now() - start, 1000);
  EXPECT_LT(Now() - start, 1100);
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_StaleInput_IsDiscardedBeforeTheCommand) {
  ports_.line.Arrive("late reply\r\n");
  ports_.line.Answer("t\r", "1.5\r\n");
  port_.WriteLine(L"t");
  std::wstring reply;
  EXPECT_TRUE(port_.ReadLine(reply));
  EXPECT_EQ(reply, L"1.5");
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_OmegaWithoutAddress_IsRaisedAfterWriteBeginAlone) {
  StartLog();
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"PV", L"", L"100", true); }),
            (Raised{com_port_error::ERR_ADDRESS_NOT_SPECIFIED, L"CKespCOMPort3 - WriteLine()",
                    L"Omega controller address not specified."}));
  EXPECT_EQ(record_, (Lines{L"Log WriteLine...", L"WriteBegin(PV,1)"}));
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_ClosedPort_IsLoggedAndRaisedWithoutWriteEnd) {
  port_.ClosePort();
  record_.clear();
  StartLog();
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t"); }),
            (Raised{8018, L"CKespCOMPort3 - WriteLine() [commCOMControl]",
                    L"Operation valid only when the port is open"}));
  EXPECT_EQ(record_, (Lines{L"Log WriteLine...", L"WriteBegin(t,1)", L"Log Clearing buffers...",
                            L"Log ** WriteLine() error: 8018 - Operation valid only when the port is open "
                            L"[commCOMControl] **"}));
}

// Clearing both buffers (1, 2), the carriage return (3) and its drain (4, 5), clearing (6, 7), the frame (8),
// the drain (9, 10).
TEST_F(CKespCOMPort3OutputTest, WriteLine_AnyCallFails_IsRaisedWithoutWriteEnd) {
  for (int nth = 1; nth <= 10; ++nth) {
    SCOPED_TRACE(nth);
    ports_.line.drain = {1};
    record_.clear();
    ports_.line.FailCall(nth, 8012);
    EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t", {}, {}, true); }),
              (Raised{8012, L"CKespCOMPort3 - WriteLine() [commCOMControl]", L"The device is not open"}));
    EXPECT_NE(record_.back(), L"WriteEnd()");
    EXPECT_TRUE(ports_.line.open);
  }
  ports_.line.FailCall(11, 8012);
  EXPECT_TRUE(port_.WriteLine(L"t", {}, {}, true));
}

TEST_F(CKespCOMPort3OutputTest, WriteLine_ClockAtItsEnd_CrBeforeOverflows) {
  environment_.clock.SetTickCount(kHighest32 - 49);
  StartLog();
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t", {}, {}, true); }),
            (Raised{6, L"CKespCOMPort3 - WriteLine() [KespCommObj]", L"Overflow"}));
  EXPECT_EQ(ports_.line.written, "\r");
  EXPECT_EQ(LogLines().back(), L"** WriteLine() error: 6 - Overflow [KespCommObj] **");
  EXPECT_TRUE(port_.WriteLine(L"t"));  // without the delay no deadline is needed
}

TEST_F(CKespCOMPort3OutputTest, WriteUpdate_CountBeyondSixteenBits_ShowsTheHighest) {
  ports_.line.drain = {1000000, 32768, 32767, 1};
  port_.WriteLine(L"t");
  EXPECT_EQ(Events(),
            (Lines{L"WriteBegin(t,1)", L"WriteUpdate(32767,1)", L"WriteUpdate(32767,1)",
                   L"WriteUpdate(32767,1)", L"WriteUpdate(1,1)", L"WriteUpdate(0,1)", L"WriteEnd()"}));
}

// The drain has no limit of its own: here the driver takes its time, ten seconds of it.
TEST_F(CKespCOMPort3OutputTest, WriteLine_SlowDrain_IsWaitedForWithoutPumping) {
  ports_.line.drain.assign(1000, 1);
  ports_.line.on_poll = [this] { environment_.clock.Advance(10); };
  EXPECT_TRUE(port_.WriteLine(L"t"));
  EXPECT_EQ(record_.size(), 4u + 1001u + 1u);
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3OutputTest, WriteUpdateHandlerClosesThePort_WriteFails) {
  ports_.line.drain = {5, 4, 3};
  events_.handlers[L"WriteUpdate"] = [&] { port_.ClosePort(); };
  EXPECT_EQ(RaisedBy([&] { port_.WriteLine(L"t"); }).number, 8018);
  EXPECT_EQ(Events(), (Lines{L"WriteBegin(t,1)", L"WriteUpdate(5,1)"}));
}

TEST_F(CKespCOMPort3OutputTest, WriteBeginHandlerChangesSettings_TheyCountAtOnce) {
  events_.handlers[L"WriteBegin"] = [&] {
    port_.SetControllerStyle(EKespControllerStyle3::CS_MAXSTREAM);
    port_.SetPort(5);
    port_.SetCreateLogFile(true);
  };
  EXPECT_TRUE(port_.WriteLine(L"t"));
  EXPECT_EQ(ports_.line.written, "t");
  EXPECT_EQ(LogLines().back(), L"Sending 't' on COM port 5");
  EXPECT_EQ(Events(), (Lines{L"WriteBegin(t,1)", L"WriteUpdate(0,5)", L"WriteEnd()"}));
}

TEST_F(CKespCOMPort3OutputTest, WriteLineFromItsOwnHandler_BothAreWritten) {
  ports_.line.drain = {1};
  events_.handlers[L"WriteUpdate"] = [&] {
    events_.handlers.clear();
    EXPECT_TRUE(port_.WriteLine(L"inner"));
  };
  EXPECT_TRUE(port_.WriteLine(L"outer"));
  EXPECT_EQ(ports_.line.writes, (std::vector<std::string>{"outer\r", "inner\r"}));
  EXPECT_EQ(record_.back(), L"WriteEnd()");
}

TEST_F(CKespCOMPort3OutputTest, NobodyListens_NothingIsMissed) {
  CKespCOMPort3 quiet(environment_.environment, ports_);
  quiet.SetMaxBaudRate(Rate(13));
  quiet.SetBaudRate(Rate(6));
  ports_.line.Answer("t\r", "1.5\r\n");
  std::wstring reply;
  EXPECT_TRUE(quiet.OpenPort() && quiet.WriteLine(L"t") && quiet.ReadLine(reply));
  EXPECT_EQ(reply, L"1.5");
}

}  // namespace
}  // namespace kesp
