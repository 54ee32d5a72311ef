// Unit tests of how the serial transport's detection ends otherwise: garbage, aborts, failures, a radio
// modem.
#include "serial/kesp_com_port_detection_fixture.h"

namespace kesp {
namespace {

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
