// Unit tests of the serial transport's conversation with a radio modem.
#include <cstdint>
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kIni[] = L"C:\\Temp\\RFModem.ini";

class CKespCOMPort3ModemTest : public SerialConversationTest {
 protected:
  CKespCOMPort3ModemTest() {
    port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
    port_.SetDataBits(EKespDataBits3::DATA_8BITS);  // so that a preset that is applied shows
    port_.SetUseRFModem(true);
    port_.SetTimeOut(300);
    Open();
  }

  // The style is the one of before, without its preset; and the operation neither pumps nor shows anything.
  void ExpectLeftInOrder() {
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_OMEGA);
    EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment_.user.boxes().empty());
    EXPECT_EQ(environment_.pump.count(), 0);
  }

  void Confirms(const std::vector<std::string>& commands) {
    for (const std::string& command : commands) ports_.line.Answer(command, "OK\r");
  }
  void AnswersQuestions() {
    Confirms({"+++", "ATCN\r"});
    const std::pair<const char*, const char*> answers[] = {
        {"ATSH\r", "13A2\r"}, {"ATSL\r", "40B0C1D2\r"}, {"ATPL\r", "4\r"}, {"ATID\r", "3332\r"},
        {"ATCH\r", "C\r"},    {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"}};
    for (const auto& [question, answer] : answers) ports_.line.Answer(question, answer);
  }
  void ConfirmsAddress() { Confirms({"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}); }

  std::wstring Remembered(const std::wstring& section = L"COM1") const {
    return environment_.settings.Value(kIni, section, L"InstrAddr");
  }

  static auto Texts(const RadioModemSettings& settings) {
    return std::vector<std::wstring>{settings.serial,  settings.power_level,   settings.pan_id,
                                     settings.channel, settings.modem_address, settings.timeout};
  }

  const RadioModemSettings untouched_{L"a", L"b", L"c", L"d", L"e", L"f"};
  RadioModemSettings settings_ = untouched_;
  const Lines questions_{L"+++",      L"ATSH<0D>", L"ATSL<0D>", L"ATPL<0D>", L"ATID<0D>",
                         L"ATCH<0D>", L"ATMY<0D>", L"ATCT<0D>", L"ATCN<0D>"};
};

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

TEST_F(CKespCOMPort3ModemTest, CommandMode_ComesAfterASecondOfSilence) {
  std::int32_t sent = 0;
  ports_.line.on_output = [&](const std::string&, const std::wstring&) {
    if (sent == 0) sent = Now();
  };
  const std::int32_t start = Now();
  port_.RFWriteModemInstrAddress(26);
  EXPECT_EQ(sent - start, 1001);  // the reading that sees the second complete is itself a millisecond
  EXPECT_EQ(environment_.pump.count(), 0);
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_LastLookIsRightBehindTheDeadline) {
  ConfirmsAddress();
  ports_.line.Answer("+++", "OK\r", 301);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  environment_.settings.Put(kIni, L"COM1", L"InstrAddr", L"-1");
  ports_.line.Answer("+++", "OK\r", 302);
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_TakesAnythingThatHoldsOkAndCarriageReturn) {
  struct Case {
    const char* reply;
    bool confirmed;
  };
  constexpr Case kCases[] = {{"OK\r", true},   {"OK\r\n", true},   {"noiseOK\rmore", true},
                             {"OOK\r", true},  {"OKOK\r", true},   {"OK", false},
                             {"O", false},     {"OK\n", false},    {"ok\r", false},
                             {"O K\r", false}, {"ERROR\r", false}, {"\r", false}};
  for (const Case& c : kCases) {
    ConfirmsAddress();
    environment_.settings.Put(kIni, L"COM1", L"InstrAddr", L"-1");
    ports_.line.Answer("+++", c.reply);
    EXPECT_EQ(port_.RFWriteModemInstrAddress(26), c.confirmed) << c.reply;
    ExpectLeftInOrder();
  }
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_ArrivesInPieces) {
  ConfirmsAddress();
  ports_.line.answers.erase("+++");
  ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
    if (written != "+++") return;
    const char* const pieces[] = {"xx", "O", "K", "\r"};
    for (std::uint32_t i = 0; i < 4; ++i) ports_.line.Arrive(pieces[i], 10 * (i + 1));
  };
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_LineNeverSilent_EndsByItsTime) {
  std::int32_t sent = 0;
  ports_.line.on_output = [&](const std::string&, const std::wstring&) { sent = Now(); };
  ports_.line.on_poll = [&] { ports_.line.Arrive("x"); };
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  EXPECT_EQ(Now() - sent, 302);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_Flood_EndsAtTheLimit) {
  const std::string chunk(CKespCOMPort3::kReplyLimit / 2 + 1, 'x');
  int chunks = 0;
  ports_.line.on_poll = [&] {
    ++chunks;
    ports_.line.Arrive(chunk);
  };
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_LE(chunks, 6);
  ExpectLeftInOrder();
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_Logged_WithTheAddressOfTheInstrument) {
  port_.SetInstrAddr(12);
  Confirms({"+++"});
  StartLog();
  EXPECT_TRUE(port_.RFWriteModemSettings(1, 2, 3, 400));
  const Lines lines = LogLines();
  const std::wstring suffix = L" (RF address 12)";
  for (const std::wstring& line : lines) EXPECT_TRUE(line.ends_with(suffix)) << testing::PrintToString(line);
  Lines waits;
  for (const std::wstring& line : lines) {
    if (line.find(L"'OK'") != std::wstring::npos)
      waits.push_back(line.substr(0, line.size() - suffix.size()));
  }
  Lines expected{L"Waiting for 'OK'", L"Received 'OK'"};
  for (int i = 0; i < 5; ++i) {
    expected.insert(expected.end(), {L"Waiting for 'OK'", L"Timed out waiting for 'OK'"});
  }
  EXPECT_EQ(waits, expected);
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
  environment_.settings.Put(kIni, L"COM1", L"InstrAddr", L"5");
  environment_.settings.Put(kIni, L"COM256", L"InstrAddr", L"26");
  port_.SetPort(256);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(record_, Lines{});
  port_.SetPort(1);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Remembered(), L"26");
}

TEST_F(CKespCOMPort3ModemTest, Address_NoCommandMode_IsFalseAndNotRemembered) {
  environment_.settings.Put(kIni, L"COM1", L"InstrAddr", L"5");
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

TEST_F(CKespCOMPort3ModemTest, NoDeadlineLeftOnTheClock_IsFalse) {
  for (const std::int32_t left : {500, 1100}) {  // for the guard time, for the wait behind it
    environment_.clock.SetTickCount(kHighest32 - left);
    EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
    environment_.clock.SetTickCount(kHighest32 - left);
    EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, 400));
    environment_.clock.SetTickCount(kHighest32 - left);
    EXPECT_FALSE(port_.RFReadModemSettings(settings_));
    ExpectLeftInOrder();
  }
}

}  // namespace
}  // namespace kesp
