// Unit tests of the serial transport's text replies: what ends them, what is made of them, and failures.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3InputTest : public SerialConversationFixture {
 protected:
  using Device = void (CKespCOMPort3::*)(bool);

  struct Mode {
    bool terminate_on_lf;
    bool strip_crlf;
    bool check_non_ascii;
  };

  CKespCOMPort3InputTest() { Open(); }
  ~CKespCOMPort3InputTest() override { EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages"; }

  void Use(const Mode& mode) {
    port_.SetTerminateOnLF(mode.terminate_on_lf);
    port_.SetStripCRLF(mode.strip_crlf);
    port_.SetCheckNonAscii(mode.check_non_ascii);
  }
  void Read() {
    Run([&] { return port_.ReadLine(reply_); });
  }
  void ExpectReply(const std::wstring& reply) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_TRUE(returned_);
    EXPECT_EQ(reply_, reply);
  }
  static Raised TimedOut(const std::wstring& port = L"1") {
    return {com_port_error::ERR_READ_TIMEOUT, kSource,
            L"Timeout waiting for instrument to respond to command on COM" + port + L"."};
  }
  static Raised Failed(std::int32_t number, const wchar_t* source, const wchar_t* description) {
    return {number, std::wstring(kSource) + L" [" + source + L"]", description};
  }

  static constexpr wchar_t kSource[] = L"CKespCOMPort3 - ReadLine()";
  std::wstring reply_ = L"before";
};

// To the millisecond. A chunk is taken when it has come, and the clock is not looked at again behind the last
// one; a deadline belongs to the wait, so that the last look is right behind it.
TEST_F(CKespCOMPort3InputTest, Reply_EndsByTheModeAndTheTimeOut) {
  struct Arrival {
    const char* bytes;
    std::uint32_t in_ms;
  };
  struct Case {
    Mode mode;
    std::int32_t time_out;
    std::vector<Arrival> arrivals;
    const wchar_t* reply;
    std::int32_t lasted;
    bool times_out = false;
    Device device = nullptr;
  };
  constexpr Mode kDefault{true, true, true};
  constexpr Mode kUnstripped{true, false, true};
  constexpr Mode kLineFeedOnly{true, false, false};
  constexpr Mode kSilence{false, true, true};
  constexpr Mode kSilenceUnstripped{false, false, true};
  constexpr Mode kSilenceUnchecked{false, true, false};
  constexpr Mode kRaw{false, false, false};
  constexpr Device kModem = &CKespCOMPort3::SetUseRFModem;
  constexpr Device kRedirector = &CKespCOMPort3::SetUseRedirector;
  const Case cases[] = {
      {kDefault, 3000, {{"12.345\r\n", 40}}, L"12.345", 39},
      {kDefault, 3000, {{"12", 5}, {".34", 9}, {"5\r", 10}, {"\nrest", 30}}, L"12.345  rest", 29},
      {kDefault, 0, {{"1\n", 1}}, L"1", 0},
      {kDefault, 0, {{"1\n", 2}}, L"", 1, true},
      {kDefault, 250, {{"1\n", 251}}, L"1", 250},
      {kDefault, 250, {{"1\n", 252}}, L"", 251, true},
      // A carriage return alone is accepted after the time-out, nothing is not, and arrivals do not restart
      // it.
      {kDefault, 3000, {{"  1.5\r  ", 100}}, L"1.5", 3001},
      {kDefault, 3000, {{"1.5", 100}}, L"1.5", 3001, true},
      {kDefault, 3000, {{"1.", 2999}, {"5\n", 3002}}, L"1.", 3001, true},
      // Blanks around the reply go even unstripped.
      {kUnstripped, 3000, {{"  1.5\r  ", 100}}, L"1.5\r", 3001},
      {kUnstripped, 3000, {{"  1.5\r\n  ", 100}}, L"1.5\r\n", 99},
      {kLineFeedOnly, 3000, {{" a\r\n ", 10}}, L"a\r\n", 9},
      {kLineFeedOnly, 3000, {{"a", 10}}, L"a", 3001, true},
      // Each arrival restarts the time-out, and silence of that length ends the reply.
      {kSilence, 400, {{"a\n", 401}, {"b", 802}, {"late", 1204}}, L"a b", 802 + 401},
      {kSilenceUnchecked, 400, {{"a\n", 401}, {"b", 802}, {"late", 1204}}, L"a b", 802 + 401},
      {kSilenceUnstripped, 400, {{"a\n", 401}, {"b", 802}, {"late", 1204}}, L"a\nb", 802 + 401},
      {kSilence, 400, {}, L"", 401, true},
      {kSilenceUnchecked, 400, {}, L"", 401, true},
      {kSilenceUnstripped, 400, {}, L"", 401, true},
      // Raw: a hundred milliseconds of silence, whatever the time-out, which the first byte has.
      {kRaw, 150, {{" a", 20}, {"b\r\n ", 121}, {"late", 223}}, L" ab\r\n ", 121 + 101},
      {kRaw, 30000, {{" a", 20}, {"b\r\n ", 121}, {"late", 223}}, L" ab\r\n ", 121 + 101},
      {kRaw, 50, {{"a", 51}, {"b", 152}}, L"ab", 152 + 101},
      {kRaw, 400, {}, L"", 401, true},
      {kUnstripped, 3000, {{" 1.5\r ", 50}}, L"1.5\r", 49, false, kModem},
      {kSilenceUnstripped, 3000, {{" 1.5\r ", 50}}, L"1.5\r", 49, false, kModem},
      {kUnstripped, 3000, {{" 1.5\r ", 50}}, L"1.5\r", 49, false, kRedirector},
      {kSilenceUnstripped, 3000, {{" 1.5\r ", 50}}, L"1.5\r", 49, false, kRedirector},
      {kDefault, 3000, {{"1.5\n", 50}}, L"1.5", 49, false, kModem},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    Use(c.mode);
    port_.SetTimeOut(c.time_out);
    if (c.device != nullptr) (port_.*c.device)(true);
    for (const Arrival& arrival : c.arrivals) ports_.line.Arrive(arrival.bytes, arrival.in_ms);
    Read();
    EXPECT_EQ(raised_, c.times_out ? TimedOut() : Raised{});
    EXPECT_EQ(reply_, c.reply);
    EXPECT_EQ(lasted_, c.lasted);
    if (c.device != nullptr) (port_.*c.device)(false);
    ports_.line.arrivals.clear();
    port_.ClearBuffers();
  }
}

TEST_F(CKespCOMPort3InputTest, Chunks_EachRaisesTheLengthSoFar) {
  ports_.line.Arrive("12", 5);
  ports_.line.Arrive(".34", 9);
  ports_.line.Arrive("5\r\n", 10);
  Read();
  ExpectReply(L"12.345");
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(2,1)", L"ReadUpdate(5,1)", L"ReadUpdate(8,1)"}));
}

TEST_F(CKespCOMPort3InputTest, Silence_RaisesTheEventAndThenTheError) {
  port_.ClosePort();
  port_.SetPort(3);
  Open();
  StartLog();
  ports_.line.Arrive("1.5", 100);
  Read();
  EXPECT_EQ(raised_, TimedOut(L"3"));
  EXPECT_EQ(record_, (Lines{L"ReadBegin(3)", L"Log ReadLine...", L"ReadUpdate(3,3)", L"ReadTimeOut(3)"}));
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

TEST_F(CKespCOMPort3InputTest, Check_CodesUpTo128PassAndTheNextIsRefused) {
  std::string valid;
  for (int code = 0; code <= 128; ++code) {
    if (code != '\n') valid += static_cast<char>(code);
  }
  ports_.line.Arrive(valid + "\n");
  Read();
  EXPECT_EQ(raised_, Raised{});
  for (const char invalid : {'\x81', '\xFF'}) {
    const std::string bytes = std::string("ab") + invalid + invalid;
    const std::wstring reply = SystemCodePage().FromBytes(bytes);
    record_.clear();
    ports_.line.Arrive(bytes + "\r\n");
    Read();
    EXPECT_EQ(raised_, (Raised{com_port_error::ERR_INVALID_CHARACTERS, kSource,
                               L"Invalid characters received on COM1."}));
    EXPECT_EQ(record_,
              (Lines{L"ReadBegin(1)", L"ReadUpdate(6,1)", L"ReadInvalidChars(" + reply + L"\r\n,3,1)"}));
    EXPECT_EQ(reply_, reply + L"\r\n");
    Use({true, true, false});
    ports_.line.Arrive(bytes + "\r\n");
    Read();
    ExpectReply(reply);
    Use({true, true, true});
  }
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

TEST_F(CKespCOMPort3InputTest, Logged_RawWithCodesAndThenFilteredUnlessRefused) {
  StartLog();
  ports_.line.Arrive("\x07*\x80\r\n", 5);
  Read();
  ports_.line.Arrive("\xFF\n", 5);
  Read();
  const std::wstring euro = SystemCodePage().FromBytes("\x80");
  EXPECT_EQ(record_,
            (Lines{L"ReadBegin(1)", L"Log ReadLine...", L"ReadUpdate(5,1)",
                   L"Log Received '\x07*" + euro + L"\r\n' (raw) on COM1(Asc: 07 42 128 13 10 )",
                   L"Log Received '\x07*" + euro + L"' (filtered) on COM1", L"ReadBegin(1)",
                   L"Log ReadLine...", L"ReadUpdate(2,1)",
                   L"Log Received '\xFF\n' (raw) on COM1(Asc: 255 10 )", L"ReadInvalidChars(\xFF\n,1,1)"}));
}

TEST_F(CKespCOMPort3InputTest, PortFails_IsLoggedAndRaisedWithWrappedSource) {
  StartLog();
  ports_.line.Arrive("12", 2);
  ports_.line.FailCall(8, 8020);
  Read();
  EXPECT_EQ(raised_, Failed(8020, L"commCOMControl", L"Error reading comm device"));
  EXPECT_EQ(reply_, L"12");
  EXPECT_EQ(record_,
            (Lines{L"ReadBegin(1)", L"Log ReadLine...", L"ReadUpdate(2,1)",
                   L"Log ** ReadLine() error: 8020 - Error reading comm device [commCOMControl] **"}));
  port_.ClosePort();
  Read();
  EXPECT_EQ(raised_.number, 8018);
  EXPECT_EQ(reply_, L"");
}

TEST_F(CKespCOMPort3InputTest, EndOfTheClock_DeadlineBehindItIsAnOverflow) {
  environment_.clock.SetTickCount(kHighest32 - 2999);
  Read();
  EXPECT_EQ(raised_, Failed(6, L"KespCommObj", L"Overflow"));
  // A reply that is there needs no deadline, and the last one there is, is kept.
  for (const std::int32_t left : {100, 3000}) {
    environment_.clock.SetTickCount(kHighest32 - left);
    ports_.line.Arrive("1\n", left == 100 ? 0 : 3000);
    Read();
    ExpectReply(L"1");
  }
}

// The counter turns negative in the middle of the wait, in steps as Windows makes them.
TEST_F(CKespCOMPort3InputTest, CounterTurnsNegativeMeanwhile_ReadTimesOutAllTheSame) {
  environment_.clock.SetStepPerReading(16);
  environment_.clock.SetTickCount(kHighest32 - 3005);
  Read();
  EXPECT_EQ(raised_, TimedOut());
  EXPECT_LE(lasted_, 3000 + 3 * 16);
  EXPECT_LT(environment_.clock.tick(), 0);
}

TEST_F(CKespCOMPort3InputTest, Flood_EndsAtTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit / 2, 'x');
  ports_.line.on_poll = [&] { ports_.line.Arrive(chunk); };
  Read();
  EXPECT_EQ(raised_, Failed(7, L"KespCommObj", L"Out of memory"));
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
  EXPECT_EQ(raised_, TimedOut());
  ports_.line.Arrive("\xFF\n");
  events_.handlers[L"ReadInvalidChars"] = [&] { port_.SetPort(8); };
  Read();
  EXPECT_EQ(raised_.description, L"Invalid characters received on COM9.");
}

}  // namespace
}  // namespace kesp
