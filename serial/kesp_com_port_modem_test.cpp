// Unit tests of the serial transport's conversation with a radio modem: its command mode, settings and
// target.
#include <string>
#include <vector>

#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3ModemTest : public CKespCOMPort3ModemFixture {
 protected:
  // What has no form shows nothing.
  ~CKespCOMPort3ModemTest() override { EXPECT_TRUE(environment_.user.boxes().empty()); }

  // The modem is not known to point at any instrument.
  void Forget() { environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"-1"); }

  // Reads the settings; those that were read, or none of them.
  void ExpectSettings(const Lines& expected) {
    EXPECT_EQ(port_.RFReadModemSettings(settings_), expected != kUntouched);
    EXPECT_EQ((Lines{settings_.serial, settings_.power_level, settings_.pan_id, settings_.channel,
                     settings_.modem_address, settings_.timeout}),
              expected);
  }

  const Lines kUntouched{L"a", L"b", L"c", L"d", L"e", L"f"};
  const Lines kRead{L"13A240B0C1D2", L"4", L"13106", L"12", L"26", L"1500"};
  RadioModemSettings settings_{L"a", L"b", L"c", L"d", L"e", L"f"};
};

TEST_F(CKespCOMPort3ModemTest, CommandMode_ComesAfterASecondOfSilence) {
  std::int32_t sent = 0;
  ports_.line.on_output = [&](const std::string&, const std::wstring&) {
    if (sent == 0) sent = Now();
  };
  const std::int32_t start = Now();
  port_.RFWriteModemInstrAddress(26);
  EXPECT_EQ(sent - start, 1001);  // the reading that sees the second complete is itself a millisecond
}

// The deadline belongs to the wait, whose last look is right behind it.
TEST_F(CKespCOMPort3ModemTest, AwaitOk_TakesAnythingThatHoldsOkAndCarriageReturnInTime) {
  struct Case {
    const char* reply;
    bool confirmed;
    std::uint32_t in_ms = 1;
  };
  constexpr Case kCases[] = {
      {"OK\r", true},     {"OK\r\n", true}, {"noiseOK\rmore", true}, {"OOK\r", true},     {"OKOK\r", true},
      {"OK", false},      {"O", false},     {"OK\n", false},         {"ok\r", false},     {"O K\r", false},
      {"ERROR\r", false}, {"\r", false},    {"OK\r", true, 301},     {"OK\r", false, 302}};
  ports_.line.ConfirmAddress26();
  for (const Case& c : kCases) {
    Forget();
    ports_.line.Answer("+++", c.reply, c.in_ms);
    EXPECT_EQ(port_.RFWriteModemInstrAddress(26), c.confirmed) << c.reply << " " << c.in_ms;
    ExpectLeftInOrder();
  }
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_ArrivesInPieces) {
  ports_.line.ConfirmAddress26();
  ports_.line.answers.erase("+++");
  ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
    if (written != "+++") return;
    const char* const pieces[] = {"xx", "O", "K", "\r"};
    for (std::uint32_t i = 0; i < 4; ++i) ports_.line.Arrive(pieces[i], 10 * (i + 1));
  };
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_LineNeverSilent_EndsByItsTimeOrAtTheLimit) {
  std::int32_t sent = 0;
  std::string chunk = "x";
  int chunks = 0;
  ports_.line.on_output = [&](const std::string&, const std::wstring&) { sent = Now(); };
  ports_.line.on_poll = [&] {
    ++chunks;
    ports_.line.Arrive(chunk);
  };
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  EXPECT_EQ(Now() - sent, 302);
  chunk.assign(CKespCOMPort3::kReplyLimit / 2 + 1, 'x');
  chunks = 0;
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_LE(chunks, 6);
}

TEST_F(CKespCOMPort3ModemTest, AwaitOk_Logged_EveryLineEndsWithTheAddressOfTheInstrument) {
  port_.SetInstrAddr(12);
  Confirms({"+++"});
  StartLog();
  EXPECT_TRUE(port_.RFWriteModemSettings(1, 2, 3, 400));
  const std::wstring suffix = L" (RF address 12)";
  Lines waits;
  for (const std::wstring& line : LogLines()) {
    EXPECT_TRUE(line.ends_with(suffix)) << testing::PrintToString(line);
    if (line.find(L"'OK'") == std::wstring::npos) continue;
    waits.push_back(line.substr(0, line.size() - suffix.size()));
  }
  Lines expected{L"Waiting for 'OK'", L"Received 'OK'"};
  for (int i = 0; i < 5; ++i) {
    expected.insert(expected.end(), {L"Waiting for 'OK'", L"Timed out waiting for 'OK'"});
  }
  EXPECT_EQ(waits, expected);
}

TEST_F(CKespCOMPort3ModemTest, NoDeadlineLeftOnTheClock_IsFalse) {
  for (const std::int32_t left : {500, 1100}) {  // for the guard time, for the wait behind it
    environment_.clock.SetTickCount(kHighest32 - left);
    EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
    environment_.clock.SetTickCount(kHighest32 - left);
    EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, 400));
    environment_.clock.SetTickCount(kHighest32 - left);
    ExpectSettings(kUntouched);
    ExpectLeftInOrder();
  }
}

// Nobody knows then whether the modem has heard "+++".
TEST_F(CKespCOMPort3ModemTest, PortFailsWhileConfirmationIsAwaited_ModemIsToldToLeave) {
  Confirms({"ATCN\r"});
  for (const bool behind_a_failure : {false, true}) {
    record_.clear();
    int looks = 2;
    ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
      looks = written == "+++" ? 0 : 2;
    };
    ports_.line.on_poll = [&] {
      // The look at the output buffer, then the first one for the confirmation.
      const bool fails = ++looks == 2 || (looks == 1 && behind_a_failure);
      if (fails) ports_.line.FailCall(1, 8020);
    };
    EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
    EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATCN<0D>"}));
    EXPECT_EQ(Remembered(), L"<none>");
  }
}

// The bytes are out by then, and a modem in command mode would swallow what comes next.
TEST_F(CKespCOMPort3ModemTest, PortFailsBehindThePlusses_ModemThatConfirmsIsToldToLeave) {
  ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
    if (written == "+++") ports_.line.FailCall(1, 8020);
  };
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  Confirms({"+++", "ATCN\r"});
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"+++", L"ATCN<0D>"}));
  EXPECT_EQ(Remembered(), L"<none>");
}

TEST_F(CKespCOMPort3ModemTest, Read_OpensThePortAnewAsksInOrderAndConvertsToDecimal) {
  AnswersQuestions();
  events_.handlers[L"WriteBegin"] = [&] {
    EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy);
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_MAXSTREAM);
  };
  ExpectSettings(kRead);
  EXPECT_EQ(Outputs(), questions_);
  // The style in which the port is opened is still the client's.
  EXPECT_EQ(Lines(record_.begin(), record_.begin() + 3),
            (Lines{L"Close", L"Handshaking 0", L"Open COM1 9600,E,8,1"}));
  EXPECT_TRUE(ports_.line.open);
}

TEST_F(CKespCOMPort3ModemTest, Read_WithoutTheModemFlagOrUnstripped_AnswersAreTheSame) {
  AnswersQuestions();
  port_.SetUseRFModem(false);
  ExpectSettings(kRead);
  port_.SetStripCRLF(false);
  ExpectSettings(kRead);
}

TEST_F(CKespCOMPort3ModemTest, Read_NoCommandMode_LeavesAllOutputsAndSendsNothingMore) {
  ExpectSettings(kUntouched);
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  ports_.line.open_failures = {8005};
  ExpectSettings(kUntouched);
  EXPECT_EQ(Outputs(), (Lines{L"+++"})) << "not open either";
}

TEST_F(CKespCOMPort3ModemTest, Read_AnyAnswerMissingOrUnreadable_LeavesCommandModeAndTheOutputs) {
  for (std::size_t i = 1; i + 1 < questions_.size(); ++i) {
    for (const char* answer : {"", "\r", "xyz\r"}) {
      // The first three answers are texts, whatever they hold.
      if (i <= 3 && *answer != '\0') continue;
      SCOPED_TRACE(testing::Message() << "question " << i << " answered '" << answer << "'");
      AnswersQuestions();
      ports_.line.Answer(SystemCodePage().ToBytes(questions_[i].substr(0, 4)) + "\r", answer);
      record_.clear();
      ExpectSettings(kUntouched);
      Lines expected(questions_.begin(), questions_.begin() + static_cast<std::ptrdiff_t>(i) + 1);
      expected.push_back(L"ATCN<0D>");
      EXPECT_EQ(Outputs(), expected);
      ExpectLeftInOrder();
    }
  }
}

// Nothing but "+++" is confirmed; the next commands go out all the same.
TEST_F(CKespCOMPort3ModemTest, Write_SendsEachSettingRoundedInHexadecimal) {
  Confirms({"+++"});
  events_.handlers[L"WriteBegin"] = [&] { EXPECT_EQ(environment_.user.pointer(), MousePointer::kBusy); };
  EXPECT_TRUE(port_.RFWriteModemSettings(13106, 12, 26, 1500, true));
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATID3332<0D>", L"ATCHC<0D>", L"ATMY1A<0D>", L"ATCTF<0D>", L"ATWR<0D>",
                              L"ATCN<0D>"}));
  record_.clear();
  EXPECT_TRUE(port_.RFWriteModemSettings(15.6, -1, 0.2, 1440));
  EXPECT_EQ(Outputs(),
            (Lines{L"+++", L"ATID10<0D>", L"ATCHFFFF<0D>", L"ATMY0<0D>", L"ATCTE<0D>", L"ATCN<0D>"}));
}

TEST_F(CKespCOMPort3ModemTest, Write_NoCommandMode_IsTrueAndSendsNothingMore) {
  EXPECT_TRUE(port_.RFWriteModemSettings(1, 2, 3, 400, true));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
}

TEST_F(CKespCOMPort3ModemTest, Write_NumberWithoutThirtyTwoBitForm_IsFalseBeforeAnythingIsSent) {
  Confirms({"+++"});
  EXPECT_FALSE(port_.RFWriteModemSettings(-1, 2, 3, 400));
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 1e10, 400));
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, -100));
  EXPECT_EQ(record_, Lines{});
}

TEST_F(CKespCOMPort3ModemTest, ClosedPort_WritingIsFalse) {
  port_.ClosePort();
  EXPECT_FALSE(port_.RFWriteModemSettings(1, 2, 3, 400));
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(ports_.line.written, "");
}

// What is not confirmed counts all the same.
TEST_F(CKespCOMPort3ModemTest, Address_IsSentInHexadecimalUnlessTheModemPointsThere) {
  Confirms({"+++"});
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATDH0<0D>", L"ATDL1A<0D>", L"ATWR<0D>", L"ATCN<0D>"}));
  EXPECT_EQ(Remembered(), L"26");
  record_.clear();
  const std::int32_t calls = ports_.line.faults.calls();
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(record_, Lines{});
  EXPECT_EQ(ports_.line.faults.calls(), calls);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(27));
  EXPECT_EQ(Outputs()[2], L"ATDL1B<0D>");
  EXPECT_EQ(Remembered(), L"27");
}

TEST_F(CKespCOMPort3ModemTest, Address_NothingRemembered_TheFirstOneIsSentToo) {
  Confirms({"+++"});
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(1));
  EXPECT_EQ(Outputs().at(2), L"ATDL1<0D>");
}

// A handler that turns to another port does not have this port's modem noted under the other.
TEST_F(CKespCOMPort3ModemTest, Address_IsRememberedForThePortOfTheModem) {
  ports_.line.ConfirmAddress26();
  environment_.settings.Put(kModemFile, L"COM256", L"InstrAddr", L"26");
  port_.SetPort(256);
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(record_, Lines{});
  port_.SetPort(1);
  events_.handlers[L"WriteEnd"] = [&] { port_.SetPort(7); };
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Remembered(L"COM1"), L"26");
  EXPECT_EQ(Remembered(L"COM7"), L"<none>");
}

TEST_F(CKespCOMPort3ModemTest, Address_NoCommandMode_IsFalseAndNotRemembered) {
  Forget();
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++"}));
  EXPECT_EQ(Remembered(), L"-1");
}

TEST_F(CKespCOMPort3ModemTest, Address_CannotBeRemembered_IsSentEveryTime) {
  ports_.line.ConfirmAddress26();
  environment_.settings.RefuseWriting();
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs().size(), 10u);
  // Without a temporary folder there is no file.
  environment_.files.SetTemporaryFolder(L"");
  CKespCOMPort3 port(environment_.environment, ports_, &events_);
  const int calls = environment_.settings.faults.calls();
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(port.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs().size(), 20u);
  EXPECT_EQ(environment_.settings.faults.calls(), calls);
}

}  // namespace
}  // namespace kesp
