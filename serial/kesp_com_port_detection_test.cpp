// Unit tests of the serial transport's detection: what is tried, in which order, and success.
#include "serial/kesp_com_port_detection_fixture.h"

namespace kesp {
namespace {

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

}  // namespace
}  // namespace kesp
