// Unit tests of the serial transport's text replies: what ends them, to the millisecond.
#include "serial/kesp_com_port_input_fixture.h"

namespace kesp {
namespace {

TEST_F(CKespCOMPort3InputTest, LineFeedArrives_ReturnsAtOnceWithoutLineEnd) {
  ports_.line.Arrive("12.345\r\n", 40);
  Read();
  ExpectReply(L"12.345");
  EXPECT_EQ(lasted_, 39);  // the chunk is taken at 40, and the clock is not looked at again
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(8,1)"}));
}

TEST_F(CKespCOMPort3InputTest, Chunks_EachRaisesTheLengthSoFar) {
  ports_.line.Arrive("12", 5);
  ports_.line.Arrive(".34", 9);
  ports_.line.Arrive("5\r", 10);
  ports_.line.Arrive("\nrest", 30);
  Read();
  ExpectReply(L"12.345  rest");
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(2,1)", L"ReadUpdate(5,1)", L"ReadUpdate(7,1)",
                            L"ReadUpdate(12,1)"}));
}

// The deadline itself still belongs to the wait: at start + TimeOut the line is looked at once more.
TEST_F(CKespCOMPort3InputTest, LastLookIsRightBehindTheDeadline) {
  for (const std::int32_t time_out : {0, 1, 250, 3000}) {
    SCOPED_TRACE(time_out);
    port_.SetTimeOut(time_out);
    ports_.line.Arrive("1\n", static_cast<std::uint32_t>(time_out) + 1);
    Read();
    ExpectReply(L"1");
    ports_.line.Arrive("1\n", static_cast<std::uint32_t>(time_out) + 2);
    Read();
    ExpectTimeOut();
    EXPECT_EQ(lasted_, time_out + 1);
    ports_.line.arrivals.clear();
    port_.ClearBuffers();
  }
}

TEST_F(CKespCOMPort3InputTest, Silence_RaisesTheEventAndThenTheError) {
  port_.ClosePort();
  port_.SetPort(3);
  Open();
  StartLog();
  Read();
  ExpectTimeOut(3);
  EXPECT_EQ(reply_, L"");
  EXPECT_EQ(record_, (Lines{L"ReadBegin(3)", L"Log ReadLine...", L"ReadTimeOut(3)"}));
}

TEST_F(CKespCOMPort3InputTest, CarriageReturnOnly_IsAcceptedAfterTheTimeOut) {
  ports_.line.Arrive("  1.5\r  ", 100);
  Read();
  ExpectReply(L"1.5");
  EXPECT_EQ(lasted_, 3001);
}

TEST_F(CKespCOMPort3InputTest, CarriageReturnOnly_BlanksAroundTheReplyGoEvenUnstripped) {
  port_.SetStripCRLF(false);
  ports_.line.Arrive("  1.5\r  ", 100);
  Read();
  ExpectReply(L"1.5\r");
  ports_.line.Arrive("  1.5\r\n  ", 100);
  Read();
  ExpectReply(L"1.5\r\n");
}

TEST_F(CKespCOMPort3InputTest, NoTerminator_TimesOutThoughCharactersArrived) {
  ports_.line.Arrive("1.5", 100);
  Read();
  ExpectTimeOut();
  EXPECT_EQ(reply_, L"1.5");
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(3,1)", L"ReadTimeOut(1)"}));
}

TEST_F(CKespCOMPort3InputTest, TerminatedMode_ArrivalDoesNotRestartTheTimeOut) {
  ports_.line.Arrive("1.", 2999);
  ports_.line.Arrive("5\n", 3002);
  Read();
  ExpectTimeOut();
  EXPECT_EQ(lasted_, 3001);
}

TEST_F(CKespCOMPort3InputTest, ModemOrRedirector_CarriageReturnEndsTheReplyAtOnce) {
  struct Case {
    void (CKespCOMPort3::*set)(bool);
    bool terminate_on_lf;
  };
  constexpr Case kCases[] = {{&CKespCOMPort3::SetUseRFModem, true},
                             {&CKespCOMPort3::SetUseRFModem, false},
                             {&CKespCOMPort3::SetUseRedirector, true},
                             {&CKespCOMPort3::SetUseRedirector, false}};
  for (const Case& c : kCases) {
    (port_.*c.set)(true);
    port_.SetTerminateOnLF(c.terminate_on_lf);
    port_.SetStripCRLF(false);
    ports_.line.Arrive(" 1.5\r ", 50);
    Read();
    ExpectReply(L"1.5\r");
    EXPECT_LE(lasted_, 50);
    (port_.*c.set)(false);
  }
}

TEST_F(CKespCOMPort3InputTest, Modem_LineFeedEndsTheReplyAsWell) {
  port_.SetUseRFModem(true);
  ports_.line.Arrive("1.5\n", 50);
  Read();
  ExpectReply(L"1.5");
  EXPECT_EQ(lasted_, 49);
}

// Each arrival restarts the time-out, to the millisecond, and silence of that length ends the reply.
TEST_F(CKespCOMPort3InputTest, SilenceMode_EndsTimeOutAfterTheLastArrival) {
  for (const Mode& mode : {Mode{false, true, true}, Mode{false, true, false}, Mode{false, false, true}}) {
    Use(mode);
    port_.SetTimeOut(400);
    ports_.line.Arrive("a\n", 401);
    ports_.line.Arrive("b", 802);
    ports_.line.Arrive("late", 1204);
    Read();
    ExpectReply(mode.strip_crlf ? L"a b" : L"a\nb");
    EXPECT_EQ(lasted_, 802 + 401);
    ports_.line.arrivals.clear();
    port_.ClearBuffers();
  }
}

TEST_F(CKespCOMPort3InputTest, SilenceMode_NothingArrives_TimesOut) {
  for (const Mode& mode : {Mode{false, true, true}, Mode{false, true, false}, Mode{false, false, true},
                           Mode{false, false, false}}) {
    Use(mode);
    port_.SetTimeOut(400);
    Read();
    ExpectTimeOut();
    EXPECT_EQ(lasted_, 401);
  }
}

TEST_F(CKespCOMPort3InputTest, RawMode_HundredMillisecondsOfSilenceEndTheReplyWhateverTheTimeOut) {
  Use({false, false, false});
  for (const std::int32_t time_out : {150, 3000, 30000}) {
    SCOPED_TRACE(time_out);
    port_.SetTimeOut(time_out);
    ports_.line.Arrive(" a", 20);
    ports_.line.Arrive("b\r\n ", 20 + 101);
    ports_.line.Arrive("late", 20 + 101 + 102);
    Read();
    ExpectReply(L" ab\r\n ");
    EXPECT_EQ(lasted_, 20 + 101 + 101);
    ports_.line.arrivals.clear();
    port_.ClearBuffers();
  }
}

TEST_F(CKespCOMPort3InputTest, RawMode_FirstByteHasTheWholeTimeOut) {
  Use({false, false, false});
  port_.SetTimeOut(50);
  ports_.line.Arrive("a", 51);
  ports_.line.Arrive("b", 51 + 101);
  Read();
  ExpectReply(L"ab");
}

TEST_F(CKespCOMPort3InputTest, TerminateOnLfAlone_IsNotTheRawMode) {
  Use({true, false, false});
  ports_.line.Arrive(" a\r\n ", 10);
  Read();
  ExpectReply(L"a\r\n");
  ports_.line.Arrive("a", 10);
  Read();
  ExpectTimeOut();
}

// The counter turns negative in the middle of the wait, in steps as Windows makes them.
TEST_F(CKespCOMPort3InputTest, CounterTurnsNegativeMeanwhile_ReadTimesOutAllTheSame) {
  environment_.clock.SetStepPerReading(16);
  port_.SetTimeOut(3000);
  environment_.clock.SetTickCount(kHighest32 - 3005);
  Read();
  ExpectTimeOut();
  EXPECT_LE(lasted_, 3000 + 3 * 16);
  EXPECT_LT(environment_.clock.tick(), 0);
}

}  // namespace
}  // namespace kesp
