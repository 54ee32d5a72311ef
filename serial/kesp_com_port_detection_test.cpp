// Unit tests of the serial transport's detection: what is tried, in which order, and how it ends.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

// The index of a rate, and a command.
using Attempts = std::vector<std::pair<std::int32_t, std::wstring>>;

class CKespCOMPort3DetectionTest : public SerialConversationFixture {
 protected:
  CKespCOMPort3DetectionTest() {
    port_.SetTimeOut(777);
    port_.SetCheckNonAscii(false);
    environment_.clock.SetStepPerReading(20);
  }

  // The instrument gives this reply to this command while the line has this rate, and nothing otherwise.
  void AnswersAt(const std::wstring& rate, const std::string& cmd, const std::string& reply) {
    ports_.line.on_output = [=, this](const std::string& written, const std::wstring& settings) {
      if (written == cmd + "\r" && settings == rate + L",N,8,1") ports_.line.Arrive(reply, 1);
    };
  }
  // Garbage comes at every rate but this one.
  void AnswersOnlyAt(const std::wstring& rate) {
    ports_.line.on_output = [=, this](const std::string&, const std::wstring& settings) {
      ports_.line.Arrive(settings == rate + L",N,8,1" ? "ok\n" : "\xFF\n", 1);
    };
  }

  // What was tried, as AutoDetectUpdate told it.
  Attempts Tried() const {
    const std::wstring beginning = L"AutoDetectUpdate(1,";
    Attempts attempts;
    for (const std::wstring& line : record_) {
      if (!line.starts_with(beginning)) continue;
      const std::size_t comma = line.find(L',', beginning.size());
      attempts.emplace_back(std::stoi(line.substr(beginning.size())),
                            line.substr(comma + 1, line.rfind(L',') - comma - 1));
    }
    return attempts;
  }

  // Searches. Whatever it comes to, the end is told once, the port is closed, and the client's settings are
  // back.
  void ExpectSearch(bool found, const Attempts& tried, std::int32_t rate_afterwards,
                    EDetectLevel level = EDetectLevel::dlAllCommands) {
    record_.clear();
    EXPECT_EQ(port_.AutoDetect(buffer_, level), found);
    EXPECT_EQ(Tried(), tried);
    EXPECT_EQ(port_.BaudRate(), Rate(rate_afterwards));
    EXPECT_EQ(buffer_ == L"before", !found);
    EXPECT_EQ(port_.TimeOut(), 777);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment_.user.boxes().empty());
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectBegin(1)"), 1);
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectEnd()"), 1);
  }

  std::wstring buffer_ = L"before";
};

TEST_F(CKespCOMPort3DetectionTest, AnswerAtThePresentRate_EveryStepInItsOrder) {
  AnswersAt(L"9600", "*IDN?", "KESP,1\r\n");
  ExpectSearch(true, {{6, L"*IDN?"}}, 6);
  EXPECT_EQ(buffer_, L"KESP,1");
  EXPECT_EQ(record_, (Lines{L"AutoDetectBegin(1)", L"AutoDetectUpdate(1,6,*IDN?,False)", L"Handshaking 0",
                            L"Open COM1 9600,N,8,1", L"WriteBegin(*IDN?,1)", L"ClearOut", L"ClearIn",
                            L"Output *IDN?<0D>", L"WriteUpdate(0,1)", L"WriteEnd()", L"ReadBegin(1)",
                            L"ReadUpdate(8,1)", L"Close", L"AutoDetectEnd()"}));
}

TEST_F(CKespCOMPort3DetectionTest, NoAnswer_EachCommandWaitsTwoSecondsAndPumpsOnce) {
  environment_.clock.SetStepPerReading(1);
  AllowRates(6, 6, 6);
  std::int32_t begin = 0;
  events_.handlers[L"ReadBegin"] = [&] {
    begin = Now();
    EXPECT_EQ(port_.TimeOut(), 2000);
    EXPECT_TRUE(port_.CheckNonAscii());
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  };
  events_.handlers[L"ReadTimeOut"] = [&] { EXPECT_EQ(Now() - 1 - begin, 2001); };
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}}, 6);
  EXPECT_EQ(environment_.pump.count(), 2);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"ReadTimeOut(1)"), 2);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"Close"), 2);
}

TEST_F(CKespCOMPort3DetectionTest, Level_IsTheNumberOfCommandsAndTheLastOneIsForSlowRates) {
  const Lines commands{L"*IDN?", L"*VER", L"t"};
  for (const std::int32_t level : {-1, 0, 1, 2, 3, 4}) {
    for (std::int32_t rate = 0; rate <= 13; ++rate) {
      SCOPED_TRACE(testing::Message() << "level " << level << " rate " << rate);
      AllowRates(0, 13, rate);
      port_.SetMaxBaudRate(Rate(rate));
      port_.SetMinBaudRate(Rate(rate));
      Attempts expected;
      for (int i = 0; i < std::min(level, rate < 5 ? 3 : 2); ++i) {
        expected.emplace_back(rate, commands[static_cast<std::size_t>(i)]);
      }
      ExpectSearch(false, expected, rate, As<EDetectLevel>(level));
    }
  }
}

TEST_F(CKespCOMPort3DetectionTest, ArgumentsLeftOut_AreAllCommandsWithoutAnAddress) {
  AllowRates(3, 3, 3);
  EXPECT_FALSE(port_.AutoDetect(buffer_));
  EXPECT_EQ(Outputs(), (Lines{L"*IDN?<0D>", L"*VER<0D>", L"t<0D>"}));
}

TEST_F(CKespCOMPort3DetectionTest, OmegaAddress_IsUsedForEveryCommand) {
  AllowRates(3, 3, 3);
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_FALSE(port_.AutoDetect(buffer_, EDetectLevel::dlCommonCommands, L"01"));
  EXPECT_EQ(Outputs(), (Lines{L"<04>0011*IDN?<05><0D>", L"<04>0011*VER<05><0D>"}));
}

TEST_F(CKespCOMPort3DetectionTest, Sweep_GoesFromTheHighestRateDownAndStopsAtTheAnswer) {
  AllowRates(4, 8, 6);
  AnswersAt(L"19200", "*VER", "v1\r\n");
  ExpectSearch(true, {{6, L"*IDN?"}, {6, L"*VER"}, {8, L"*IDN?"}, {8, L"*VER"}, {7, L"*IDN?"}, {7, L"*VER"}},
               7);
  EXPECT_EQ(buffer_, L"v1");
}

TEST_F(CKespCOMPort3DetectionTest, Sweep_NothingAnywhere_TriesEachRateOnceAndRestoresTheRate) {
  AllowRates(4, 8, 6);
  ExpectSearch(false, {{6, L"*IDN?"}, {8, L"*IDN?"}, {7, L"*IDN?"}, {5, L"*IDN?"}, {4, L"*IDN?"}}, 6,
               EDetectLevel::dlSCPIOnly);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br2400);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br38400);
  // One pumping after each command, and one more after each rate of the sweep.
  EXPECT_EQ(environment_.pump.count(), 5 + 4);
}

TEST_F(CKespCOMPort3DetectionTest, Sweep_SlowInstrumentAnswersTheThirdCommand) {
  AllowRates(3, 4, 4);
  AnswersAt(L"1200", "t", "20.5\r\n");
  ExpectSearch(true, {{4, L"*IDN?"}, {4, L"*VER"}, {4, L"t"}, {3, L"*IDN?"}, {3, L"*VER"}, {3, L"t"}}, 3);
}

TEST_F(CKespCOMPort3DetectionTest, RateOutsideTheRange_IsTriedFirstAllTheSame) {
  AllowRates(3, 8, 8);
  port_.SetMaxBaudRate(Rate(4));
  ExpectSearch(false, {{8, L"*IDN?"}, {4, L"*IDN?"}, {3, L"*IDN?"}}, 8, EDetectLevel::dlSCPIOnly);
}

TEST_F(CKespCOMPort3DetectionTest, NewObject_HasNoRateToOpenWith) {
  CKespCOMPort3 fresh(environment_.environment, ports_, &events_);
  EXPECT_FALSE(fresh.AutoDetect(buffer_));
  EXPECT_EQ(Tried(), (Attempts{{-1, L"*IDN?"}}));
  EXPECT_EQ(fresh.TimeOut(), 3000);
  EXPECT_EQ(record_.back(), L"AutoDetectEnd()");
}

TEST_F(CKespCOMPort3DetectionTest, Garbage_GivesUpTheRateWithItsOtherCommands) {
  AllowRates(3, 4, 4);
  AnswersOnlyAt(L"1200");
  ExpectSearch(true, {{4, L"*IDN?"}, {3, L"*IDN?"}}, 3);
  EXPECT_EQ(buffer_, L"ok");
  EXPECT_EQ(environment_.pump.count(), 0);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"Close"), 2);
}

TEST_F(CKespCOMPort3DetectionTest, GarbageEverywhere_PumpsOncePerRateOfTheSweep) {
  AllowRates(4, 6, 6);
  AnswersOnlyAt(L"none");
  ExpectSearch(false, {{6, L"*IDN?"}, {5, L"*IDN?"}, {4, L"*IDN?"}}, 6);
  EXPECT_EQ(environment_.pump.count(), 2);
}

TEST_F(CKespCOMPort3DetectionTest, ReadFailsForAnotherReason_NextCommandIsTried) {
  AllowRates(6, 6, 6);
  AnswersAt(L"9600", "*VER", "v1\r\n");
  ports_.line.FailCall(9, 8020);  // four calls to open, four to write, and the first look at the input
  ExpectSearch(true, {{6, L"*IDN?"}, {6, L"*VER"}}, 6);
}

TEST_F(CKespCOMPort3DetectionTest, AbortAtTheFirstUpdate_EndsWithoutOpeningThePort) {
  events_.abort_at_update = 1;
  ExpectSearch(false, {{6, L"*IDN?"}}, 6);
  EXPECT_EQ(record_.size(), 3u);
  EXPECT_EQ(ports_.line.faults.calls(), 0);
}

// The next three end at once, too, and keep the rate that was being tried.
TEST_F(CKespCOMPort3DetectionTest, AbortAtALaterUpdate_EndsThere) {
  AllowRates(4, 8, 6);
  events_.abort_at_update = 4;
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}, {8, L"*IDN?"}, {8, L"*VER"}}, 8);
}

TEST_F(CKespCOMPort3DetectionTest, CannotOpen_EndsThere) {
  AllowRates(4, 8, 6);
  // The first rate opens for both commands, and then another program takes the port.
  ports_.line.open_failures = {0, 0, 8005};
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}, {8, L"*IDN?"}}, 8);
}

TEST_F(CKespCOMPort3DetectionTest, CannotWrite_EndsThere) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);  // and no address
  ExpectSearch(false, {{6, L"*IDN?"}}, 6);
}

TEST_F(CKespCOMPort3DetectionTest, EndHandler_SeesSettingsRestoredAndThePointerBusy) {
  events_.abort_at_update = 1;
  events_.handlers[L"AutoDetectEnd"] = [&] {
    EXPECT_EQ(port_.TimeOut(), 777);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    port_.OpenPort();  // which is closed as well
  };
  ExpectSearch(false, {{6, L"*IDN?"}}, 6);
}

TEST_F(CKespCOMPort3DetectionTest, SettingsChangedInAHandler_AreTheClientsEarlierOnesAfterwards) {
  AllowRates(6, 6, 6);
  events_.handlers[L"WriteBegin"] = [&] {
    port_.SetTimeOut(10);
    port_.SetCheckNonAscii(false);
  };
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}}, 6);
}

TEST_F(CKespCOMPort3DetectionTest, Modem_IsPointedFirstAndNoOtherRateIsTried) {
  port_.SetUseRFModem(true);
  port_.SetInstrAddr(26);
  ports_.line.ConfirmAddress26();
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}}, 6);
  ports_.line.Answer("*IDN?\r", "KESP,2\r");
  ExpectSearch(true, {{6, L"*IDN?"}}, 6);
  EXPECT_EQ(buffer_, L"KESP,2");
  EXPECT_EQ(ports_.line.writes, (std::vector<std::string>{"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r",
                                                          "*IDN?\r", "*VER\r", "*IDN?\r"}));
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_KESP);
}

TEST_F(CKespCOMPort3DetectionTest, Modem_DoesNotAnswer_EndsWithoutACommand) {
  port_.SetUseRFModem(true);
  ExpectSearch(false, {{6, L"*IDN?"}}, 6);
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
}

TEST_F(CKespCOMPort3DetectionTest, NoDeadlineLeftOnTheClock_IsNothing) {
  AllowRates(6, 6, 6);
  environment_.clock.SetTickCount(kHighest32 - 1000);
  ExpectSearch(false, {{6, L"*IDN?"}, {6, L"*VER"}}, 6);
}

}  // namespace
}  // namespace kesp
