// Unit tests of the serial transport's text replies: stripping, checking, logging, failures and handlers.
#include "serial/kesp_com_port_input_fixture.h"

namespace kesp {
namespace {

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
    EXPECT_EQ(raised_, (Raised{com_port_error::ERR_INVALID_CHARACTERS, kReadLineSource,
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
  EXPECT_EQ(raised_, (Raised{8020, std::wstring(kReadLineSource) + L" [commCOMControl]",
                             L"Error reading comm device"}));
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
  EXPECT_EQ(raised_, (Raised{6, std::wstring(kReadLineSource) + L" [KespCommObj]", L"Overflow"}));
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
  EXPECT_EQ(raised_, (Raised{7, std::wstring(kReadLineSource) + L" [KespCommObj]", L"Out of memory"}));
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
