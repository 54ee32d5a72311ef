// The radio modem's dialog of the registered library: it shows what the modem has, and the modem has what it
// wrote.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/clients/serial_editing_fixture.h"

namespace kesp::clients {
namespace {

class ModemEditingFixture : public SerialEditingFixture {
 protected:
  // Opens the modem's dialog from the RS-232 dialog, does that with it, and cancels the RS-232 dialog.
  void EditModem(const DialogUser::Act& act) {
    EXPECT_FALSE(Edit([&act](DialogUser& user) {
      if (!user.IsChecked(ID_CHK_USE_RF_MODEM)) user.Click(ID_CHK_USE_RF_MODEM);
      user.Click(ID_CMD_RF_PROPERTIES);
      const BoxContents box = user.AnswerBox(kModemBox, IDOK);
      EXPECT_EQ(box.texts, (std::vector<std::wstring>{
                               L"Make sure the RF modem is connected to " + OwnPort() +
                               L" and set to operate at 9600 baud. Click OK to continue or click Cancel to "
                               L"abort."}));
      act(user);
      user.Click(ID_CANCEL);
    }));
    // The dialog's last act did not take these back.
    EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_UseRFModem), VARIANT_TRUE);
    EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_MinBaudRate), br1200);
    EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_MaxBaudRate), br115200);
  }
  // Waits until the dialog has read the modem: the window is there before.
  static void AwaitSettings(const DialogUser& modem) {
    EXPECT_TRUE(WaitFor([&] { return !modem.Text(ID_TXT_RF_TIMEOUT).empty(); })) << "no settings";
  }
  static void Enter(DialogUser& modem, int box, const std::wstring& text) {
    modem.MoveTo(box);
    modem.Type(text);
  }
  // Presses OK and answers the question that it asks.
  static void Confirm(DialogUser& modem, int answer) {
    modem.Click(ID_OK);
    const BoxContents box = modem.AnswerBox(kModemDialog, answer);
    EXPECT_EQ(box.texts, (std::vector<std::wstring>{L"Do you want to write these settings to NVRAM?"}));
  }
};

// With the test's own other end.
class SerialEditingModemTest : public ModemEditingFixture {
 protected:
  void PlayModem() {
    constexpr std::pair<const char*, const char*> kAnswers[] = {
        {"+++", "OK\r"},      {"ATSH\r", "13A200\r"}, {"ATSL\r", "40A1B2C3\r"}, {"ATPL\r", "3\r"},
        {"ATID\r", "3332\r"}, {"ATCH\r", "C\r"},      {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"},
    };
    for (const auto& [command, answer] : kAnswers) wire_.OnBytes(command).Reply(answer);
    wire_.OnBytes("\r").Reply("OK\r");
  }

  SerialWire wire_;
};

TEST_F(SerialEditingModemTest, Confirmed_IsWrittenToTheModemAndKeptOnDemandAlone) {
  PlayModem();
  for (const auto& [answer, kept] : {std::pair{IDNO, ""}, std::pair{IDYES, "ATWR\r"}}) {
    EditModem([&, answer = answer](DialogUser& user) {
      user.In(kModemDialog, [&](DialogUser& modem) {
        AwaitSettings(modem);
        EXPECT_EQ(modem.Text(ID_LBL_SERIAL), L"13A20040A1B2C3");
        EXPECT_EQ(modem.Text(ID_LBL_POWER_LEVEL), L"Power level 3");
        EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATSH\rATSL\rATPL\rATID\rATCH\rATMY\rATCT\rATCN\r");
        Enter(modem, ID_TXT_CHANNEL, L"20");
        Confirm(modem, answer);
      });
    });
    EXPECT_EQ(wire_.ReceiveUntilQuiet(),
              std::string("+++ATID3332\rATCH14\rATMY1A\rATCTF\r") + kept + "ATCN\r");
  }
}

TEST_F(SerialEditingModemTest, Cancelled_NothingIsWritten) {
  PlayModem();
  EditModem([this](DialogUser& user) {
    user.In(kModemDialog, [this](DialogUser& modem) {
      AwaitSettings(modem);
      wire_.ReceiveUntilQuiet();
      Enter(modem, ID_TXT_CHANNEL, L"20");
      modem.Press(VK_ESCAPE);
    });
  });
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

TEST_F(SerialEditingModemTest, SilentLine_IsToldAndTheModemsDialogGoesAlone) {
  EditModem([](DialogUser& user) {
    const BoxContents box = user.AnswerBox(L"Query RF Modem Settings", IDOK);
    EXPECT_EQ(box.texts, (std::vector<std::wstring>{
                             L"Unable to read settings from RF modem. Make sure the modem is connected to " +
                             OwnPort() + L" and set to operate at 9600 baud."}));
    const DWORD thread = GetWindowThreadProcessId(user.window(), nullptr);
    EXPECT_TRUE(WaitFor([thread] { return FindDialog(kModemDialog, thread) == nullptr; }));
    EXPECT_TRUE(user.IsChecked(ID_CHK_USE_RF_MODEM));
  });
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++");
}

// With the simulated modem that the test's registration names (CMakeLists.txt).
class SerialEditingRadioModemTest : public ModemEditingFixture {
 protected:
  // What the modem has, in the order of the dialog: PAN ID, channel, address, timeout.
  std::vector<std::wstring> Settings() {
    Text serial, power_level, pan_id, channel, address, time_out;
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(port()->RFReadModemSettings(serial.in_out(), power_level.in_out(), pan_id.in_out(),
                                          channel.in_out(), address.in_out(), time_out.in_out(), &answer),
              S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
    return {pan_id.str(), channel.str(), address.str(), time_out.str()};
  }
};

TEST_F(SerialEditingRadioModemTest, Entered_IsWhatTheModemHas) {
  using Entry = std::pair<int, std::vector<std::wstring>>;
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_UseRFModem, VARIANT_TRUE), S_OK);
  std::vector<std::wstring> before = Settings();
  EXPECT_EQ(before.front(), L"13106");
  for (const auto& [answer, entered] :
       {Entry{IDYES, {L"4660", L"13", L"255", L"1500"}}, Entry{IDNO, {L"65535", L"24", L"1", L"2000"}}}) {
    EditModem([&, answer = answer, entered = entered](DialogUser& user) {
      user.In(kModemDialog, [&](DialogUser& modem) {
        AwaitSettings(modem);
        const int boxes[] = {ID_TXT_PAN_ID, ID_TXT_CHANNEL, ID_TXT_RF_MODEM_ADDRESS, ID_TXT_RF_TIMEOUT};
        for (std::size_t index = 0; index < 4; ++index) {
          EXPECT_EQ(modem.Text(boxes[index]), before[index]);
          Enter(modem, boxes[index], entered[index]);
        }
        Confirm(modem, answer);
      });
    });
    EXPECT_EQ(Settings(), entered);
    before = entered;
  }
}

}  // namespace
}  // namespace kesp::clients
