// Unit tests of the serial transport's binary replies.
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3BinaryInputTest : public SerialConversationTest {
 protected:
  CKespCOMPort3BinaryInputTest() {
    port_.SetInputMode(EInputMode::imBinary);
    Open();
  }
  ~CKespCOMPort3BinaryInputTest() override {
    EXPECT_EQ(environment_.pump.count(), 0) << "a read pumped messages";
  }

  // As for text replies: the outcome, and the milliseconds between the first look at the clock and the last.
  void Read(std::int32_t silence_ms = 100) {
    const std::int32_t start = Now();
    raised_ = RaisedBy([&] { returned_ = port_.ReadLineBinary(value_, silence_ms); });
    lasted_ = Now() - start - 1;
  }
  void ExpectBox(const std::wstring& error) {
    EXPECT_EQ(raised_, Raised{});
    EXPECT_FALSE(returned_);
    ASSERT_EQ(environment_.user.boxes().size(), 1u);
    const MessageBoxRequest& box = environment_.user.boxes()[0];
    EXPECT_EQ(box.text, L"An error occurred while attempting to read from COM1.\r\nError: " + error);
    EXPECT_EQ(box.title, L"Kesp Communications Error");
    EXPECT_EQ(box.style, 16);
  }

  BinaryValue value_;
  bool returned_ = false;
  Raised raised_;
  std::int32_t lasted_ = 0;
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
  const std::int32_t start = Now();
  EXPECT_TRUE(port_.ReadLineBinary(value_));
  EXPECT_EQ(Now() - start - 1, 10 + 101);
}

TEST_F(CKespCOMPort3BinaryInputTest, EachArrivalRestartsTheSilence) {
  for (const std::int32_t silence : {0, 1, 450}) {
    SCOPED_TRACE(silence);
    const auto gap = static_cast<std::uint32_t>(silence) + 1;
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

TEST_F(CKespCOMPort3BinaryInputTest, NegativeSilence_EndsAtTheFirstEmptyLook) {
  ports_.line.Arrive("a", 10);
  ports_.line.Arrive("b", 12);
  Read(-5);
  EXPECT_EQ(value_, BinaryValue(Bytes{'a'}));
  EXPECT_EQ(lasted_, 10);
}

TEST_F(CKespCOMPort3BinaryInputTest, FirstByte_HasTheTimeOutAndItsDeadlineIsInclusive) {
  port_.SetTimeOut(700);
  ports_.line.Arrive("a", 701);
  Read();
  EXPECT_EQ(value_, BinaryValue(Bytes{'a'}));
  ports_.line.Arrive("b", 702);
  Read();
  EXPECT_EQ(raised_, (Raised{com_port_error::ERR_READ_TIMEOUT, L"CKespCOMPort3 - ReadLineBinary()",
                             L"Timeout waiting for instrument to respond to command on COM1."}));
  EXPECT_EQ(lasted_, 701);
  EXPECT_EQ(value_, BinaryValue(Bytes{'a'})) << "a time-out changed the value";
}

TEST_F(CKespCOMPort3BinaryInputTest, Silence_RaisesTheEventAndLogsNothing) {
  StartLog();
  Read();
  EXPECT_EQ(raised_.number, com_port_error::ERR_READ_TIMEOUT);
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadTimeOut(1)"}));
  EXPECT_TRUE(environment_.user.boxes().empty());
  EXPECT_EQ(value_, BinaryValue());
}

TEST_F(CKespCOMPort3BinaryInputTest, NothingIsCheckedStrippedOrTerminated) {
  ports_.line.Arrive(std::string(" \r\n\x81\xFF\0\r", 7), 5);
  ports_.line.Arrive("\n ", 50);
  StartLog();
  Read();
  EXPECT_EQ(value_, BinaryValue(Bytes{' ', '\r', '\n', 0x81, 0xFF, 0, '\r', '\n', ' '}));
  EXPECT_EQ(LogLines(),
            (Lines{L"Received '" + SystemCodePage().FromBytes(std::string(" \r\n\x81\xFF\0\r\n ", 9)) +
                   L"' (raw) on COM1"}));
}

TEST_F(CKespCOMPort3BinaryInputTest, BinaryMode_ReplacesWhateverTheValueHeld) {
  for (const BinaryValue& before : {BinaryValue(), BinaryValue(L"text"), BinaryValue(Bytes{1, 2})}) {
    value_ = before;
    ports_.line.Arrive("x");
    Read();
    EXPECT_EQ(value_, BinaryValue(Bytes{'x'}));
  }
}

TEST_F(CKespCOMPort3BinaryInputTest, TextMode_AppendsToTheTextAndReportsNoCount) {
  port_.SetInputMode(EInputMode::imText);
  StartLog();
  value_ = L"before ";
  ports_.line.Arrive("a\x80", 5);
  ports_.line.Arrive("b\r\n", 50);
  Read();
  EXPECT_TRUE(returned_);
  const std::wstring text = L"before a" + SystemCodePage().FromBytes("\x80") + L"b\r\n";
  EXPECT_EQ(value_, BinaryValue(text));
  EXPECT_EQ(record_, (Lines{L"ReadBegin(1)", L"ReadUpdate(0,1)", L"ReadUpdate(0,1)",
                            L"Log Received '" + text + L"' (raw) on COM1"}));
}

TEST_F(CKespCOMPort3BinaryInputTest, TextMode_ValueWithoutText_BecomesTheReply) {
  port_.SetInputMode(EInputMode::imText);
  for (const BinaryValue& before : {BinaryValue(), BinaryValue(Bytes{1, 2})}) {
    value_ = before;
    ports_.line.Arrive("x");
    Read();
    EXPECT_EQ(value_, BinaryValue(L"x"));
  }
}

TEST_F(CKespCOMPort3BinaryInputTest, PortFails_IsShownAndFalse) {
  value_ = L"before";
  ports_.line.Arrive("12", 2);
  ports_.line.FailCall(5, 8020);
  Read();
  ExpectBox(L"8020 - Error reading comm device\r\n(commCOMControl)");
  EXPECT_EQ(value_, BinaryValue(L"before"));
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCOMPort3BinaryInputTest, PortFailsInText_WhatCameIsThere) {
  port_.SetInputMode(EInputMode::imText);
  value_ = L"before";
  ports_.line.Arrive("12", 2);
  ports_.line.FailCall(5, 8020);
  Read();
  ExpectBox(L"8020 - Error reading comm device\r\n(commCOMControl)");
  EXPECT_EQ(value_, BinaryValue(L"before12"));
}

TEST_F(CKespCOMPort3BinaryInputTest, DeadlineBeyondTheClock_IsShownAsOverflow) {
  environment_.clock.SetTickCount(kHighest32 - 2999);
  Read();
  ExpectBox(L"6 - Overflow\r\n(KespCommObj)");
}

TEST_F(CKespCOMPort3BinaryInputTest, SilenceBeyondTheClock_IsShownAsOverflow) {
  ports_.line.Arrive("x");
  Read(kHighest32);
  ExpectBox(L"6 - Overflow\r\n(KespCommObj)");
}

TEST_F(CKespCOMPort3BinaryInputTest, Flood_EndsAtTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit, 'x');
  ports_.line.on_poll = [&] { ports_.line.Arrive(chunk); };
  Read();
  ExpectBox(L"7 - Out of memory\r\n(KespCommObj)");
  EXPECT_EQ(Events(), (Lines{L"ReadBegin(1)", L"ReadUpdate(67108864,1)"}));
}

TEST_F(CKespCOMPort3BinaryInputTest, ReplyOfExactlyTheLimit_IsRead) {
  ports_.line.Arrive(std::string(CKespCOMPort3::kReplyLimit, 'x'));
  Read();
  EXPECT_TRUE(returned_);
  EXPECT_EQ(std::get<Bytes>(value_).size(), CKespCOMPort3::kReplyLimit);
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
  ExpectBox(L"8018 - Operation valid only when the port is open\r\n(commCOMControl)");
}

}  // namespace
}  // namespace kesp
