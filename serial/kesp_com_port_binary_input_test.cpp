// Unit tests of the serial transport's binary replies.
#include <algorithm>
#include <string>
#include <variant>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3BinaryInputTest : public SerialConversationFixture {
 protected:
  CKespCOMPort3BinaryInputTest() {
    port_.SetInputMode(EInputMode::imBinary);
    Open();
  }
  ~CKespCOMPort3BinaryInputTest() override {
    EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages";
  }

  void Read(std::int32_t silence_ms = 100) {
    Run([&] { return port_.ReadLineBinary(value_, silence_ms); });
  }
  void ExpectFailureBox(const std::wstring& error, std::size_t count = 1) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_FALSE(returned_);
    ExpectBox(L"attempting to read from COM1", error, count);
  }

  BinaryValue value_;
};

TEST_F(CKespCOMPort3BinaryInputTest, ThreeChunks_AreOneArrayAfterTheSilence) {
  std::string all;
  for (int i = 0; i < 300; ++i) all += static_cast<char>(i % 256);
  for (std::uint32_t i = 0; i < 3; ++i) ports_.line.Arrive(all.substr(i * 100, 100), 10 + 20 * i);
  Read(80);
  EXPECT_TRUE(returned_);
  EXPECT_EQ(value_, BinaryValue(Bytes(all.begin(), all.end())));
  EXPECT_EQ(lasted_, 50 + 81);
  EXPECT_EQ(record_,
            (Lines{L"ReadBegin(1)", L"ReadUpdate(100,1)", L"ReadUpdate(200,1)", L"ReadUpdate(300,1)"}));
}

TEST_F(CKespCOMPort3BinaryInputTest, DefaultSilence_IsAHundredMilliseconds) {
  ports_.line.Arrive("a", 10);
  Run([&] { return port_.ReadLineBinary(value_); });
  EXPECT_EQ(lasted_, 10 + 101);
}

// A negative one is over at the first empty look, as none is.
TEST_F(CKespCOMPort3BinaryInputTest, EachArrivalRestartsTheSilence) {
  for (const std::int32_t silence : {-5, 0, 1, 450}) {
    SCOPED_TRACE(silence);
    const auto gap = static_cast<std::uint32_t>(std::max(silence, 0)) + 1;
    ports_.line.Arrive("a", 10);
    ports_.line.Arrive("b", 10 + gap);
    ports_.line.Arrive("c", 10 + 2 * gap);
    ports_.line.Arrive("late", 10 + 3 * gap + 1);
    Read(silence);
    EXPECT_EQ(value_, BinaryValue(Bytes{'a', 'b', 'c'}));
    ports_.line.arrivals.clear();
    port_.ClearBuffers();
  }
}

TEST_F(CKespCOMPort3BinaryInputTest, FirstByte_HasTheTimeOutAndItsDeadlineIsInclusive) {
  port_.SetTimeOut(700);
  ports_.line.Arrive("a", 701);
  Read();
  EXPECT_EQ(value_, BinaryValue(Bytes{'a'}));
  ports_.line.Arrive("b", 702);
  record_.clear();
  StartLog();
  Read();
  EXPECT_EQ(raised_, (Raised{com_port_error::ERR_READ_TIMEOUT, L"CKespCOMPort3 - ReadLineBinary()",
                             L"Timeout waiting for instrument to respond to command on COM1."}));
  EXPECT_EQ(lasted_, 701);
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadTimeOut(1)"}));
  EXPECT_EQ(value_, BinaryValue(Bytes{'a'})) << "a time-out changed the value";
}

TEST_F(CKespCOMPort3BinaryInputTest, NothingIsCheckedStrippedOrTerminated) {
  const std::string bytes(" \r\n\x81\xFF\0\r\n ", 9);
  ports_.line.Arrive(bytes.substr(0, 7), 5);
  ports_.line.Arrive(bytes.substr(7), 50);
  StartLog();
  Read();
  EXPECT_EQ(value_, BinaryValue(Bytes(bytes.begin(), bytes.end())));
  EXPECT_EQ(LogLines(), (Lines{L"Received '" + SystemCodePage().FromBytes(bytes) + L"' (raw) on COM1"}));
}

// Bytes replace whatever the value held, text only what is no text.
TEST_F(CKespCOMPort3BinaryInputTest, ValueThatHoldsSomething_IsReplacedOrAppendedTo) {
  struct Case {
    EInputMode mode;
    BinaryValue before;
    BinaryValue after;
  };
  const Case cases[] = {{EInputMode::imBinary, L"text", Bytes{'x'}},
                        {EInputMode::imBinary, Bytes{1, 2}, Bytes{'x'}},
                        {EInputMode::imText, {}, L"x"},
                        {EInputMode::imText, Bytes{1, 2}, L"x"},
                        {EInputMode::imText, L"before ", L"before x"}};
  for (const Case& c : cases) {
    port_.SetInputMode(c.mode);
    value_ = c.before;
    ports_.line.Arrive("x");
    Read();
    EXPECT_EQ(value_, c.after);
  }
}

TEST_F(CKespCOMPort3BinaryInputTest, TextMode_ReportsNoCountAndLogsAllTheText) {
  port_.SetInputMode(EInputMode::imText);
  StartLog();
  value_ = L"before ";
  ports_.line.Arrive("a\x80", 5);
  ports_.line.Arrive("b\r\n", 50);
  Read();
  const std::wstring text = L"before a" + SystemCodePage().FromBytes("\x80") + L"b\r\n";
  EXPECT_EQ(value_, BinaryValue(text));
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(0,1)", L"ReadUpdate(0,1)",
                            L"Log Received '" + text + L"' (raw) on COM1"}));
}

// Text that came is there by then, bytes are not.
TEST_F(CKespCOMPort3BinaryInputTest, PortFails_IsShownAndFalse) {
  std::size_t boxes = 0;
  for (const EInputMode mode : {EInputMode::imBinary, EInputMode::imText}) {
    port_.SetInputMode(mode);
    value_ = L"before";
    ports_.line.Arrive("12", 2);
    ports_.line.FailCall(5, 8020);
    Read();
    ExpectFailureBox(L"8020 - Error reading comm device\r\n(commCOMControl)", ++boxes);
    EXPECT_EQ(value_, BinaryValue(mode == EInputMode::imText ? L"before12" : L"before"));
    EXPECT_TRUE(ports_.line.open);
  }
}

TEST_F(CKespCOMPort3BinaryInputTest, DeadlineBeyondTheClock_IsShownAsOverflow) {
  environment_.clock.SetTickCount(kHighest32 - 2999);
  Read();
  ExpectFailureBox(L"6 - Overflow\r\n(KespCommObj)");
  environment_.clock.SetTickCount(0);
  ports_.line.Arrive("x");
  Read(kHighest32);
  ExpectFailureBox(L"6 - Overflow\r\n(KespCommObj)", 2);
}

TEST_F(CKespCOMPort3BinaryInputTest, Flood_EndsBehindTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit, 'x');
  ports_.line.Arrive(chunk);
  Read();
  EXPECT_TRUE(returned_);
  EXPECT_EQ(std::get<Bytes>(value_).size(), chunk.size());
  ports_.line.on_poll = [&] { ports_.line.Arrive(chunk); };
  Read();
  ExpectFailureBox(L"7 - Out of memory\r\n(KespCommObj)");
  EXPECT_EQ(record_.back(), L"ReadUpdate(67108864,1)");
}

TEST_F(CKespCOMPort3BinaryInputTest, HandlerChangesTheModeOrPort_ThisReadKeepsItsMode) {
  ports_.line.Arrive("12", 5);
  ports_.line.Arrive("3", 10);
  events_.handlers[L"ReadUpdate"] = [&] {
    port_.SetInputMode(EInputMode::imText);
    port_.SetPort(7);
  };
  Read();
  EXPECT_EQ(value_, BinaryValue(Bytes{'1', '2', '3'}));
  EXPECT_EQ(Events(), (Lines{L"ReadBegin(1)", L"ReadUpdate(2,1)", L"ReadUpdate(3,7)"}));
}

TEST_F(CKespCOMPort3BinaryInputTest, HandlerClosesThePort_IsShownAndFalse) {
  ports_.line.Arrive("12", 5);
  events_.handlers[L"ReadUpdate"] = [&] { port_.ClosePort(); };
  Read();
  ExpectFailureBox(L"8018 - Operation valid only when the port is open\r\n(commCOMControl)");
}

}  // namespace
}  // namespace kesp
