// Unit tests of the serial transport's detection.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

using Attempts = std::vector<std::pair<std::int32_t, std::wstring>>;

class CKespCOMPort3DetectionTest : public SerialConversationTest {
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

  bool Detect(EDetectLevel level = EDetectLevel::dlAllCommands) {
    record_.clear();
    return port_.AutoDetect(buffer_, level);
  }

  // What was tried, as AutoDetectUpdate told it: the rates' indices and the commands.
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

  // Whatever it came to, the end is told once, the port is closed, and the client's settings are back.
  void ExpectLeftInOrder() {
    EXPECT_EQ(port_.TimeOut(), 777);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_FALSE(ports_.line.open);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment_.user.boxes().empty());
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectBegin(1)"), 1);
    EXPECT_EQ(std::count(record_.begin(), record_.end(), L"AutoDetectEnd()"), 1);
  }

  // A radio modem that confirms everything.
  void ModemConfirms() {
    port_.SetUseRFModem(true);
    port_.SetInstrAddr(26);
    for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
      ports_.line.Answer(command, "OK\r");
    }
  }

  std::wstring buffer_ = L"before";
};

TEST_F(CKespCOMPort3DetectionTest, AnswerAtThePresentRate_EveryStepInItsOrder) {
  AnswersAt(L"9600", "*IDN?", "KESP,1\r\n");
  StartLog();
  EXPECT_TRUE(Detect());
  EXPECT_EQ(buffer_, L"KESP,1");
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(record_, (Lines{L"AutoDetectBegin(1)",
                            L"AutoDetectUpdate(1,6,*IDN?,False)",
                            L"Handshaking 0",
                            L"Log Opening COM port 1 with settings 9600,N,8,1",
                            L"Open COM1 9600,N,8,1",
                            L"Log WriteLine...",
                            L"WriteBegin(*IDN?,1)",
                            L"Log Clearing buffers...",
                            L"ClearOut",
                            L"ClearIn",
                            L"Log Sending '*IDN?\r' on COM port 1",
                            L"Output *IDN?<0D>",
                            L"WriteUpdate(0,1)",
                            L"WriteEnd()",
                            L"ReadBegin(1)",
                            L"Log ReadLine...",
                            L"ReadUpdate(8,1)",
                            L"Log Received 'KESP,1\r\n' (raw) on COM1(Asc: 75 69 83 80 44 49 13 10 )",
                            L"Log Received 'KESP,1' (filtered) on COM1",
                            L"Log Closing COM port 1",
                            L"Close",
                            L"Log Closed COM port 1",
                            L"AutoDetectEnd()"}));
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, NoAnswer_EachCommandWaitsTwoSecondsAndPumpsOnce) {
  environment_.clock.SetStepPerReading(1);
  AllowRates(6, 6, 6);
  std::vector<std::int32_t> begins;
  std::vector<std::int32_t> ends;
  events_.handlers[L"ReadBegin"] = [&] {
    begins.push_back(Now());
    EXPECT_EQ(port_.TimeOut(), 2000);
    EXPECT_TRUE(port_.CheckNonAscii());
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
  };
  events_.handlers[L"ReadTimeOut"] = [&] { ends.push_back(Now() - 1); };
  EXPECT_FALSE(Detect());
  ASSERT_EQ(begins.size(), 2u);
  ASSERT_EQ(ends.size(), 2u);
  EXPECT_EQ(ends[0] - begins[0], 2001);
  EXPECT_EQ(ends[1] - begins[1], 2001);
  EXPECT_EQ(environment_.pump.count(), 2);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"Close"), 2);
  EXPECT_EQ(buffer_, L"before");
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Level_IsTheNumberOfCommandsAndTheLastOneIsForSlowRates) {
  struct Case {
    std::int32_t level;
    std::int32_t rate;
    Lines commands;
  };
  std::vector<Case> cases = {
      {1, 6, {L"*IDN?"}}, {2, 6, {L"*IDN?", L"*VER"}},      {3, 6, {L"*IDN?", L"*VER"}},
      {1, 3, {L"*IDN?"}}, {2, 3, {L"*IDN?", L"*VER"}},      {0, 3, {}},
      {-1, 3, {}},        {4, 3, {L"*IDN?", L"*VER", L"t"}}};
  for (std::int32_t rate = 0; rate <= 13; ++rate) {
    cases.push_back({3, rate, {L"*IDN?", L"*VER"}});
    if (rate < 5) cases.back().commands.push_back(L"t");
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "level " << c.level << " rate " << c.rate);
    AllowRates(0, 13, 6);
    port_.SetBaudRate(Rate(c.rate));
    port_.SetMaxBaudRate(Rate(c.rate));
    port_.SetMinBaudRate(Rate(c.rate));
    EXPECT_FALSE(Detect(As<EDetectLevel>(c.level)));
    Attempts expected;
    for (const std::wstring& cmd : c.commands) expected.emplace_back(c.rate, cmd);
    EXPECT_EQ(Tried(), expected);
    ExpectLeftInOrder();
    port_.SetMaxBaudRate(Rate(13));
    port_.SetMinBaudRate(Rate(0));
  }
}

TEST_F(CKespCOMPort3DetectionTest, DefaultArguments_AreAllCommandsWithoutAnAddress) {
  AllowRates(3, 3, 3);
  EXPECT_FALSE(port_.AutoDetect(buffer_));
  EXPECT_EQ(Tried(), (Attempts{{3, L"*IDN?"}, {3, L"*VER"}, {3, L"t"}}));
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
  EXPECT_TRUE(Detect());
  EXPECT_EQ(
      Tried(),
      (Attempts{{6, L"*IDN?"}, {6, L"*VER"}, {8, L"*IDN?"}, {8, L"*VER"}, {7, L"*IDN?"}, {7, L"*VER"}}));
  EXPECT_EQ(buffer_, L"v1");
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br19200);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Sweep_NothingAnywhere_TriesEachRateOnceAndRestoresTheRate) {
  AllowRates(4, 8, 6);
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(Tried(), (Attempts{{6, L"*IDN?"}, {8, L"*IDN?"}, {7, L"*IDN?"}, {5, L"*IDN?"}, {4, L"*IDN?"}}));
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br2400);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br38400);
  // One pumping after each command, and one more after each rate of the sweep.
  EXPECT_EQ(environment_.pump.count(), 5 + 4);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Sweep_SlowInstrumentAnswersTheThirdCommand) {
  AllowRates(3, 6, 6);
  AnswersAt(L"1200", "t", "20.5\r\n");
  EXPECT_TRUE(Detect());
  EXPECT_EQ(Tried().back(), (std::pair<std::int32_t, std::wstring>{3, L"t"}));
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br1200);
}

TEST_F(CKespCOMPort3DetectionTest, RateOutsideTheRange_IsTriedFirstAllTheSame) {
  AllowRates(3, 8, 8);
  port_.SetMaxBaudRate(Rate(4));
  EXPECT_FALSE(Detect(EDetectLevel::dlSCPIOnly));
  EXPECT_EQ(Tried(), (Attempts{{8, L"*IDN?"}, {4, L"*IDN?"}, {3, L"*IDN?"}}));
  EXPECT_EQ(port_.BaudRate(), Rate(8));
}

TEST_F(CKespCOMPort3DetectionTest, NewObject_HasNoRateToOpenWith) {
  CKespCOMPort3 fresh(environment_.environment, ports_, &events_);
  record_.clear();
  EXPECT_FALSE(fresh.AutoDetect(buffer_));
  EXPECT_EQ(Tried(), (Attempts{{-1, L"*IDN?"}}));
  EXPECT_EQ(fresh.TimeOut(), 3000);
  EXPECT_EQ(record_.back(), L"AutoDetectEnd()");
}

TEST_F(CKespCOMPort3DetectionTest, Garbage_GivesUpTheRateWithItsOtherCommands) {
  AllowRates(3, 4, 4);
  ports_.line.on_output = [&](const std::string&, const std::wstring& settings) {
    ports_.line.Arrive(settings == L"2400,N,8,1" ? "\xFF\n" : "ok\n", 1);
  };
  EXPECT_TRUE(Detect());
  EXPECT_EQ(Tried(), (Attempts{{4, L"*IDN?"}, {3, L"*IDN?"}}));
  EXPECT_EQ(buffer_, L"ok");
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br1200);
  EXPECT_EQ(environment_.pump.count(), 0);
  EXPECT_EQ(std::count(record_.begin(), record_.end(), L"Close"), 2);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, GarbageEverywhere_PumpsOncePerRateOfTheSweepAndRestoresTheRate) {
  AllowRates(4, 6, 6);
  ports_.line.on_output = [&](const std::string&, const std::wstring&) { ports_.line.Arrive("\xFF\n", 1); };
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried(), (Attempts{{6, L"*IDN?"}, {5, L"*IDN?"}, {4, L"*IDN?"}}));
  EXPECT_EQ(environment_.pump.count(), 2);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(buffer_, L"before");
}

TEST_F(CKespCOMPort3DetectionTest, ReadFailsForAnotherReason_NextCommandIsTried) {
  AllowRates(6, 6, 6);
  AnswersAt(L"9600", "*VER", "v1\r\n");
  ports_.line.FailCall(9, 8020);  // four calls to open, four to write, and the first look at the input
  EXPECT_TRUE(Detect());
  EXPECT_EQ(Tried(), (Attempts{{6, L"*IDN?"}, {6, L"*VER"}}));
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, AbortAtTheFirstUpdate_EndsWithoutOpeningThePort) {
  events_.abort_at_update = 1;
  EXPECT_FALSE(Detect());
  EXPECT_EQ(record_,
            (Lines{L"AutoDetectBegin(1)", L"AutoDetectUpdate(1,6,*IDN?,False)", L"AutoDetectEnd()"}));
  EXPECT_EQ(ports_.line.calls, 0);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, AbortAtALaterUpdate_KeepsTheRateThatWasBeingTried) {
  AllowRates(4, 8, 6);
  events_.abort_at_update = 4;
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried(), (Attempts{{6, L"*IDN?"}, {6, L"*VER"}, {8, L"*IDN?"}, {8, L"*VER"}}));
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br38400);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, CannotOpen_EndsAndKeepsTheRateOfTheAttempt) {
  AllowRates(4, 8, 6);
  // The first rate opens for both commands, and then another program takes the port.
  ports_.line.open_failures = {0, 0, 8005};
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried().size(), 3u);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br38400);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, CannotWrite_EndsAndKeepsTheRateOfTheAttempt) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);  // and no address
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried().size(), 1u);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, EndHandler_SeesSettingsRestoredAndThePointerBusy) {
  events_.abort_at_update = 1;
  events_.handlers[L"AutoDetectEnd"] = [&] {
    EXPECT_EQ(port_.TimeOut(), 777);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    port_.OpenPort();
  };
  EXPECT_FALSE(Detect());
  ExpectLeftInOrder();  // what a handler opened is closed as well
}

TEST_F(CKespCOMPort3DetectionTest, SettingsChangedInAHandler_AreTheClientsEarlierOnesAfterwards) {
  AllowRates(6, 6, 6);
  events_.handlers[L"WriteBegin"] = [&] {
    port_.SetTimeOut(10);
    port_.SetCheckNonAscii(false);
  };
  EXPECT_FALSE(Detect());
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Modem_IsPointedFirstAndThenAskedForTheInstrument) {
  ModemConfirms();
  ports_.line.Answer("*IDN?\r", "KESP,2\r");
  EXPECT_TRUE(Detect());
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATDH0<0D>", L"ATDL1A<0D>", L"ATWR<0D>", L"ATCN<0D>", L"*IDN?<0D>"}));
  EXPECT_EQ(buffer_, L"KESP,2");
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_KESP);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Modem_NoAnswer_NoOtherRateIsTried) {
  ModemConfirms();
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried(), (Attempts{{6, L"*IDN?"}, {6, L"*VER"}}));
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, Modem_DoesNotAnswer_EndsWithoutACommand) {
  port_.SetUseRFModem(true);
  EXPECT_FALSE(Detect());
  EXPECT_EQ(Tried().size(), 1u);
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3DetectionTest, NoDeadlineLeftOnTheClock_IsFalse) {
  AllowRates(6, 7, 6);
  environment_.clock.SetTickCount(kHighest32 - 1000);
  EXPECT_FALSE(Detect());
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  ExpectLeftInOrder();
}

}  // namespace
}  // namespace kesp
