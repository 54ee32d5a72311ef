// Unit tests of the serial transport's text replies.
#include <cstdint>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kSource[] = L"CKespCOMPort3 - ReadLine()";

class CKespCOMPort3InputTest : public SerialConversationTest {
 protected:
  CKespCOMPort3InputTest() { Open(); }
  ~CKespCOMPort3InputTest() override { EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages"; }

  struct Mode {
    bool terminate_on_lf;
    bool strip_crlf;
    bool check_non_ascii;
  };
  void Use(const Mode& mode) {
    port_.SetTerminateOnLF(mode.terminate_on_lf);
    port_.SetStripCRLF(mode.strip_crlf);
    port_.SetCheckNonAscii(mode.check_non_ascii);
  }

  // Reads; the outcome is in raised_, the reply in reply_, the milliseconds from the first look at the clock
  // to the last in lasted_.
  void Read() {
    const std::int32_t start = Now();
    raised_ = RaisedBy([&] { EXPECT_TRUE(port_.ReadLine(reply_)); });
    lasted_ = Now() - start - 1;
  }
  void ExpectReply(const std::wstring& reply) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_EQ(reply_, reply);
  }
  void ExpectTimeOut(std::int16_t port = 1) {
    EXPECT_EQ(raised_, (Raised{com_port_error::ERR_READ_TIMEOUT, kSource,
                               L"Timeout waiting for instrument to respond to command on COM" +
                                   std::to_wstring(port) + L"."}));
  }

  std::wstring reply_ = L"before";
  Raised raised_;
  std::int32_t lasted_ = 0;
};

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
  for (const std::int32_t time_out : {150, 3000, kHighest32 - 2000000}) {
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

TEST_F(CKespCOMPort3InputTest, Strip_EachLineEndBecomesABlankAndBothEndsAreTrimmed) {
  struct Case {
    const char* bytes;
    const wchar_t* reply;
  };
  constexpr Case kCases[] = {{"A\rB\n", L"A B"},    {"\r\n  A\r\n\r\nB  \r\n", L"A    B"},
                             {"\r\n", L""},         {"\n", L""},
                             {"\tA\t\n", L"\tA\t"}, {"A  B\r\n", L"A  B"}};
  for (const Case& c : kCases) {
    ports_.line.Arrive(c.bytes);
    Read();
    ExpectReply(c.reply);
  }
}

TEST_F(CKespCOMPort3InputTest, Check_CodesUpTo128PassAndTheNextIsRefusedAtItsPlace) {
  std::string valid;
  for (int code = 0; code <= 128; ++code) {
    if (code != '\n') valid += static_cast<char>(code);
  }
  ports_.line.Arrive(valid + "\n");
  Read();
  EXPECT_EQ(raised_, Raised{});
  for (const char invalid : {'\x81', '\xFF'}) {
    record_.clear();
    ports_.line.Arrive(std::string("ab") + invalid + invalid + "\r\n");
    Read();
    const std::wstring reply = SystemCodePage().FromBytes(std::string("ab") + invalid + invalid + "\r\n");
    EXPECT_EQ(raised_, (Raised{com_port_error::ERR_INVALID_CHARACTERS, kSource,
                               L"Invalid characters received on COM1."}));
    EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(6,1)", L"ReadInvalidChars(" + reply + L",3,1)"}));
    EXPECT_EQ(reply_, reply);
  }
}

TEST_F(CKespCOMPort3InputTest, CheckOff_EveryByteComesThrough) {
  port_.SetCheckNonAscii(false);
  ports_.line.Arrive("\x81\x80\xFF\n");
  Read();
  ExpectReply(SystemCodePage().FromBytes("\x81\x80\xFF"));
}

TEST_F(CKespCOMPort3InputTest, Check_PositionIsOneBasedAndEndsAtSixteenBits) {
  struct Case {
    std::size_t before;
    const wchar_t* position;
  };
  constexpr Case kCases[] = {
      {0, L"1"}, {32765, L"32766"}, {32766, L"32767"}, {32767, L"32767"}, {40000, L"32767"}};
  for (const Case& c : kCases) {
    record_.clear();
    ports_.line.Arrive(std::string(c.before, 'x') + "\x90\n");
    Read();
    EXPECT_EQ(raised_.number, com_port_error::ERR_INVALID_CHARACTERS);
    EXPECT_TRUE(record_.back().ends_with(L"," + std::wstring(c.position) + L",1)")) << c.before;
  }
}

TEST_F(CKespCOMPort3InputTest, Logged_RawWithCodesAndThenFiltered) {
  StartLog();
  ports_.line.Arrive("\x07*\x80\r\n", 5);
  Read();
  const std::wstring euro = SystemCodePage().FromBytes("\x80");
  EXPECT_EQ(LogLines(),
            (Lines{L"ReadLine...", L"Received '\x07*" + euro + L"\r\n' (raw) on COM1(Asc: 07 42 128 13 10 )",
                   L"Received '\x07*" + euro + L"' (filtered) on COM1"}));
  EXPECT_EQ(record_[0], L"ReadBegin(1)");
}

TEST_F(CKespCOMPort3InputTest, Logged_RefusedReply_HasTheRawLineOnly) {
  StartLog();
  ports_.line.Arrive("\xFF\n", 5);
  Read();
  EXPECT_EQ(LogLines(), (Lines{L"ReadLine...", L"Received '\xFF\n' (raw) on COM1(Asc: 255 10 )"}));
  EXPECT_EQ(record_.back(), L"ReadInvalidChars(\xFF\n,1,1)");
}

TEST_F(CKespCOMPort3InputTest, PortFails_IsLoggedAndRaisedWithWrappedSource) {
  StartLog();
  ports_.line.Arrive("12", 2);
  ports_.line.FailCall(8, 8020);
  Read();
  EXPECT_EQ(raised_,
            (Raised{8020, std::wstring(kSource) + L" [commCOMControl]", L"Error reading comm device"}));
  EXPECT_EQ(reply_, L"12");
  EXPECT_EQ(record_,
            (Lines{L"ReadBegin(1)", L"Log ReadLine...", L"ReadUpdate(2,1)",
                   L"Log ** ReadLine() error: 8020 - Error reading comm device [commCOMControl] **"}));
}

TEST_F(CKespCOMPort3InputTest, ClosedPort_FailsAndEmptiesTheResult) {
  port_.ClosePort();
  Read();
  EXPECT_EQ(raised_.number, 8018);
  EXPECT_EQ(reply_, L"");
}

TEST_F(CKespCOMPort3InputTest, DeadlineBeyondTheClock_IsAnOverflow) {
  environment_.clock.SetTickCount(kHighest32 - 2999);
  Read();
  EXPECT_EQ(raised_, (Raised{6, std::wstring(kSource) + L" [KespCommObj]", L"Overflow"}));
  // A reply that is there needs no deadline.
  environment_.clock.SetTickCount(kHighest32 - 100);
  ports_.line.Arrive("1\n");
  Read();
  ExpectReply(L"1");
}

TEST_F(CKespCOMPort3InputTest, DeadlineAtTheEndOfTheClock_IsStillKept) {
  environment_.clock.SetTickCount(kHighest32 - 3000);
  ports_.line.Arrive("1\n", 3000);
  Read();
  ExpectReply(L"1");
}

TEST_F(CKespCOMPort3InputTest, Flood_EndsAtTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit / 2, 'x');
  ports_.line.on_poll = [&] { ports_.line.Arrive(chunk); };
  Read();
  EXPECT_EQ(raised_, (Raised{7, std::wstring(kSource) + L" [KespCommObj]", L"Out of memory"}));
  EXPECT_EQ(reply_.size(), CKespCOMPort3::kReplyLimit);
  EXPECT_EQ(Events(), (Lines{L"ReadBegin(1)", L"ReadUpdate(33554432,1)", L"ReadUpdate(67108864,1)"}));
}

TEST_F(CKespCOMPort3InputTest, HandlerReadsAgain_BothRepliesAreWhole) {
  ports_.line.Arrive("outer", 5);
  ports_.line.Arrive("inner\n", 10);
  ports_.line.Arrive(" goes on\n", 20);
  std::wstring inner;
  events_.handlers[L"ReadUpdate"] = [&] {
    events_.handlers.clear();
    EXPECT_TRUE(port_.ReadLine(inner));
  };
  Read();
  EXPECT_EQ(inner, L"inner");
  ExpectReply(L"outer goes on");
}

TEST_F(CKespCOMPort3InputTest, HandlerClosesThePort_ReadFails) {
  ports_.line.Arrive("12", 5);
  events_.handlers[L"ReadUpdate"] = [&] { port_.ClosePort(); };
  Read();
  EXPECT_EQ(raised_.number, 8018);
  EXPECT_EQ(reply_, L"12");
}

TEST_F(CKespCOMPort3InputTest, HandlerChangesTheMode_ItCountsAtOnce) {
  ports_.line.Arrive("1.5", 5);
  events_.handlers[L"ReadUpdate"] = [&] {
    Use({false, false, false});
    port_.SetTimeOut(100000);
  };
  Read();
  ExpectReply(L"1.5");
  EXPECT_EQ(lasted_, 5 + 101);
}

TEST_F(CKespCOMPort3InputTest, HandlerChangesThePort_TheErrorNamesThePortOfTheEvent) {
  events_.handlers[L"ReadTimeOut"] = [&] { port_.SetPort(9); };
  Read();
  ExpectTimeOut(1);
  ports_.line.Arrive("\xFF\n");
  events_.handlers[L"ReadInvalidChars"] = [&] { port_.SetPort(8); };
  Read();
  EXPECT_EQ(raised_.description, L"Invalid characters received on COM9.");
}

}  // namespace
}  // namespace kesp
