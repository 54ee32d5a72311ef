// Unit tests of a radio modem's settings and target, read and written through the serial transport.
#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {
namespace {

TEST_F(CKespCOMPort3ModemTest, Read_AsksInOrderAndConvertsToDecimal) {
  AnswersQuestions();
  EXPECT_TRUE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(Outputs(), questions_);
  EXPECT_EQ(Texts(settings_),
            (std::vector<std::wstring>{L"13A240B0C1D2", L"4", L"13106", L"12", L"26", L"1500"}));
  EXPECT_TRUE(ports_.line.open);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Read_OpensThePortAnewWithTheBusyPointerAndTheModemsStyle) {
  AnswersQuestions();
  int begins = 0;
  events_.handlers[L"WriteBegin"] = [&] {
    ++begins;
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_MAXSTREAM);
  };
  EXPECT_TRUE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(begins, 9);
  // The style in which the port is opened is still the client's.
  EXPECT_EQ(Lines(record_.begin(), record_.begin() + 3),
            (Lines{L"Close", L"Handshaking 0", L"Open COM1 9600,E,8,1"}));
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Read_WithoutTheModemFlag_AnswersAreReadAllTheSame) {
  AnswersQuestions();
  port_.SetUseRFModem(false);
  EXPECT_TRUE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(settings_.timeout, L"1500");
}

TEST_F(CKespCOMPort3ModemTest, Read_UnstrippedReplies_LoseTheirLineEndsToo) {
  AnswersQuestions();
  port_.SetStripCRLF(false);
  EXPECT_TRUE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(settings_.serial, L"13A240B0C1D2");
  EXPECT_EQ(settings_.channel, L"12");
}

TEST_F(CKespCOMPort3ModemTest, Read_NoCommandMode_LeavesAllOutputsAndSendsNothingMore) {
  EXPECT_FALSE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(Texts(settings_), Texts(untouched_));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Read_AnyAnswerMissingOrUnreadable_LeavesCommandModeAndTheOutputs) {
  for (std::size_t i = 1; i + 1 < questions_.size(); ++i) {
    for (const char* answer : {"", "\r", "xyz\r"}) {
      // The first three answers are texts, whatever they hold.
      if (i <= 3 && *answer != '\0') continue;
      SCOPED_TRACE(testing::Message() << "question " << i << " answered '" << answer << "'");
      AnswersQuestions();
      const std::string question = SystemCodePage().ToBytes(questions_[i].substr(0, 4)) + "\r";
      ports_.line.Answer(question, answer);
      record_.clear();
      EXPECT_FALSE(port_.RFReadModemSettings(settings_));
      EXPECT_EQ(Texts(settings_), Texts(untouched_));
      Lines expected(questions_.begin(), questions_.begin() + static_cast<std::ptrdiff_t>(i) + 1);
      expected.push_back(L"ATCN<0D>");
      EXPECT_EQ(Outputs(), expected);
      ExpectLeftInOrder();
    }
  }
}

TEST_F(CKespCOMPort3ModemTest, Read_CannotOpen_IsFalse) {
  ports_.line.open_failures = {8005};
  EXPECT_FALSE(port_.RFReadModemSettings(settings_));
  EXPECT_EQ(Texts(settings_), Texts(untouched_));
  EXPECT_EQ(Outputs(), Lines{});
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Write_SendsEachSettingInHexadecimal) {
  Confirms({"+++", "ATID3332\r", "ATCHC\r", "ATMY1A\r", "ATCTF\r", "ATWR\r", "ATCN\r"});
  Lines expected{L"+++", L"ATID3332<0D>", L"ATCHC<0D>", L"ATMY1A<0D>", L"ATCTF<0D>"};
  EXPECT_TRUE(port_.RFWriteModemSettings(13106, 12, 26, 1500));
  expected.push_back(L"ATCN<0D>");
  EXPECT_EQ(Outputs(), expected);
  record_.clear();
  EXPECT_TRUE(port_.RFWriteModemSettings(13106, 12, 26, 1500, true));
  expected.insert(expected.end() - 1, L"ATWR<0D>");
  EXPECT_EQ(Outputs(), expected);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Write_RoundsToTheNearestWholeNumber) {
  Confirms({"+++"});
  EXPECT_TRUE(port_.RFWriteModemSettings(15.6, -1, 0.2, 1440));
  EXPECT_EQ(Outputs(),
            (Lines{L"+++", L"ATID10<0D>", L"ATCHFFFF<0D>", L"ATMY0<0D>", L"ATCTE<0D>", L"ATCN<0D>"}));
}

TEST_F(CKespCOMPort3ModemTest, Write_NothingConfirmed_GoesOnToTheEndAndIsTrue) {
  Confirms({"+++"});
  EXPECT_TRUE(port_.RFWriteModemSettings(1, 2, 3, 400, true));
  EXPECT_EQ(Outputs().size(), 7u);
  EXPECT_EQ(Outputs().back(), L"ATCN<0D>");
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Write_NoCommandMode_IsTrueAndSendsNothingMore) {
  bool busy = false;
  events_.handlers[L"WriteBegin"] = [&] { busy = environment_.user.pointer() == MousePointer::kBusy; };
  EXPECT_TRUE(port_.RFWriteModemSettings(1, 2, 3, 400, true));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  EXPECT_TRUE(busy);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Write_NumberWithoutThirtyTwoBitForm_IsFalseBeforeAnythingIsSent) {
  Confirms({"+++"});
  EXPECT_FALSE(port_.RFWriteModemSettings(-1, 2, 3, 400));
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 1e10, 400));
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, -100));
  EXPECT_EQ(record_, Lines{});
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Write_ClosedPort_IsFalse) {
  port_.ClosePort();
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, 400));
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(ports_.line.written, "");
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Address_IsSentInHexadecimalAndRemembered) {
  ConfirmsAddress();
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATDH0<0D>", L"ATDL1A<0D>", L"ATWR<0D>", L"ATCN<0D>"}));
  EXPECT_EQ(Remembered(), L"26");
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Address_SecondTime_SendsNothing) {
  ConfirmsAddress();
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  record_.clear();
  const std::int32_t calls = ports_.line.calls;
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(record_, Lines{});
  EXPECT_EQ(ports_.line.calls, calls);
  ExpectLeftInOrder();
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(27));
  EXPECT_EQ(Outputs()[2], L"ATDL1B<0D>");
  EXPECT_EQ(Remembered(), L"27");
}

TEST_F(CKespCOMPort3ModemTest, Address_IsRememberedForEachPort) {
  ConfirmsAddress();
  environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"5");
  environment_.settings.Put(kModemFile, L"COM256", L"InstrAddr", L"26");
  port_.SetPort(256);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(record_, Lines{});
  port_.SetPort(1);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Remembered(), L"26");
}

TEST_F(CKespCOMPort3ModemTest, Address_NoCommandMode_IsFalseAndNotRemembered) {
  environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"5");
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  EXPECT_EQ(Remembered(), L"5");
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, Address_NothingConfirmed_GoesOnAndIsRemembered) {
  Confirms({"+++"});
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs().back(), L"ATCN<0D>");
  EXPECT_EQ(Remembered(), L"26");
}

TEST_F(CKespCOMPort3ModemTest, Address_NoTemporaryFolder_IsSentEveryTime) {
  environment_.files.SetTemporaryFolder(L"");
  CKespCOMPort3 port(environment_.environment, ports_, &events_);
  ConfirmsAddress();
  EXPECT_TRUE(port.RFWriteModemInstrAddress(26));
  EXPECT_TRUE(port.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs().size(), 10u);
  EXPECT_EQ(environment_.settings.calls(), 0);
}

TEST_F(CKespCOMPort3ModemTest, SettingsFileRefusesWriting_ModemIsPointedAllTheSame) {
  ConfirmsAddress();
  environment_.settings.RefuseWriting();
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs().size(), 10u);
}

}  // namespace
}  // namespace kesp
