// Unit tests of entering a radio modem's command mode and of waiting for its confirmations.
#include "serial/kesp_com_port_modem_fixture.h"

namespace kesp {
namespace {

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
  environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"-1");
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
    environment_.settings.Put(kModemFile, L"COM1", L"InstrAddr", L"-1");
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

// Nobody knows then whether the modem has heard "+++".
TEST_F(CKespCOMPort3ModemTest, PortFailsWhileConfirmationIsAwaited_ModemIsToldToLeave) {
  Confirms({"ATCN\r"});
  ports_.line.on_output = [&](const std::string& written, const std::wstring&) {
    // The look at the output buffer, then the first one for the confirmation.
    if (written == "+++") ports_.line.FailCall(2, 8020);
  };
  EXPECT_FALSE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Outputs(), (Lines{L"+++", L"ATCN<0D>"}));
  EXPECT_EQ(Remembered(), L"<none>");
  ExpectLeftInOrder();
}

// A handler that turns to another port does not have this port's modem noted under the other.
TEST_F(CKespCOMPort3ModemTest, HandlerSetsAnotherPort_AddressIsNotedForTheModemsOwn) {
  ConfirmsAddress();
  events_.handlers[L"WriteEnd"] = [&] { port_.SetPort(7); };
  EXPECT_TRUE(port_.RFWriteModemInstrAddress(26));
  EXPECT_EQ(Remembered(L"COM1"), L"26");
  EXPECT_EQ(Remembered(L"COM7"), L"<none>");
}

}  // namespace
}  // namespace kesp
