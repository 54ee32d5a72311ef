// The RS-232 dialog of the registered library on a real COM port: which ports it offers, what it writes, what
// Cancel leaves, and that the radio modem behind the port has what its dialog wrote.
#include <gtest/gtest.h>

#include <algorithm>

#include "dialogs/dialog_ids.h"
#include "tests/clients/dialog_editing.h"
#include "tests/clients/serial_fixture.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

// The pages of the dialog with all of its flags.
enum SerialPage { kComPortPage, kSmartSwitchPage, kExtendedPage };
constexpr long kAllPages = ecfShowRS232ExtendedTab | ecfShowRS232SmartSwitchTab | ecfShowRS232IRDongle;

class SerialEditingTest : public EditingFixture<_CKespCOMPort3> {
 protected:
  SerialEditingTest() : EditingFixture(L"RS-232 Communication Settings") {
    transport_ = SerialTransport(comm_);
    UseSerialLine(transport_);
  }

  const ComPtr<_CKespCOMPort3>& port() const { return transport_; }
  using EditingFixture::Edit;
  bool Edit(const DialogUser::Act& act) const {
    return Edit(EditCall::kFacadeEarly, {.flags = kAllPages}, act);
  }
  bool IsAvailable() const {
    VARIANT_BOOL available = VARIANT_FALSE;
    EXPECT_EQ(port()->IsPortAvailable(SerialPortNumber(), &available), S_OK);
    return available == VARIANT_TRUE;
  }

  // The place in the list of ports of the one with that number; -1 when it has none.
  static int PlaceOf(const DialogUser& user, int number) {
    const Lines entries = user.Entries(ID_ICBO_COM_PORT);
    const auto found = std::find(entries.begin(), entries.end(), L"COM" + std::to_wstring(number));
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
  }
  // Changes something on each page.
  static void ChangeAll(DialogUser& user) {
    user.ClickTab(kExtendedPage);
    user.Choose(ID_CBO_PARITY, PARITY_ODD);
    user.Choose(ID_CBO_DATA_BITS, DATA_7BITS);
    user.Choose(ID_CBO_STOP_BITS, STOP_2BITS);
    user.MoveTo(ID_TXT_TIMEOUT);
    user.Type(L"450");
    user.Click(ID_CHK_STRIP_CRLF);
    user.ClickTab(kSmartSwitchPage);
    user.Click(ID_CHK_USE_SMART_SWITCH);
    user.Choose(ID_ICBO_SMART_SWITCH_STYLE, 1);
    user.ClickTab(kComPortPage);
    user.Choose(ID_CBO_BAUD_RATE, br19200);
    user.Click(ID_CHK_USE_IR_DONGLE);
    user.Click(ID_CHK_USE_REDIRECTOR);
  }
  // The port's settings in one line.
  std::wstring Settings() const {
    std::wstring settings = Read(port(), &_CKespCOMPort3::GetSettings) + L", " +
                            std::to_wstring(Read(port(), &_CKespCOMPort3::get_TimeOut)) + L" ms";
    if (Read(port(), &_CKespCOMPort3::get_StripCRLF) == VARIANT_TRUE) settings += L", strip";
    if (Read(port(), &_CKespCOMPort3::get_UseSmartSwitch) == VARIANT_TRUE) settings += L", switch";
    if (Read(port(), &_CKespCOMPort3::get_UseIRDongle) == VARIANT_TRUE) settings += L", dongle";
    if (Read(port(), &_CKespCOMPort3::get_UseRedirector) == VARIANT_TRUE) settings += L", redirector";
    const auto box = ReadObject(port(), &_CKespCOMPort3::get_SmartSwitch);
    return settings + L", style " + std::to_wstring(Read(box, &_CKespSmartSwitch3::get_Style));
  }

  SerialWire wire_;
};

class SerialEditingCallTest : public SerialEditingTest, public testing::WithParamInterface<EditCall> {};

INSTANTIATE_TEST_SUITE_P(Calls, SerialEditingCallTest, testing::ValuesIn(kEditCalls));

TEST_P(SerialEditingCallTest, Entered_IsWhatThePropertiesSayAndCancelLeavesIt) {
  EXPECT_FALSE(Edit(GetParam(), {.flags = kAllPages}, [](DialogUser& user) {
    EXPECT_EQ(user.Tabs(), (Lines{L"COM Port", L"SmartSwitch", L"Extended"}));
    ChangeAll(user);
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(Settings(), L"9600,N,8,1, 1500 ms, strip, style 2");
  EXPECT_TRUE(Edit(GetParam(), {.flags = kAllPages}, [](DialogUser& user) {
    ChangeAll(user);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Settings(), L"19200,O,7,2, 450 ms, switch, dongle, redirector, style 1");
}

TEST_F(SerialEditingTest, OwnPortThatWasOpen_IsOfferedAndClosedAfterwards) {
  VARIANT_BOOL opened = VARIANT_FALSE;
  ASSERT_EQ(RefusalOf(port()->OpenPort(&opened)), Refusal{});
  ASSERT_FALSE(IsAvailable());
  EXPECT_TRUE(Edit([](DialogUser& user) {
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), PlaceOf(user, SerialPortNumber()));
    EXPECT_GE(user.Selection(ID_ICBO_COM_PORT), 0);
    user.Click(ID_OK);
  }));
  EXPECT_TRUE(IsAvailable());
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_Port), SerialPortNumber());
}

TEST_F(SerialEditingTest, PortHeldByAnother_IsNotOffered) {
  const BarePort other(SerialWire::PortName());
  ASSERT_EQ(other.error(), DWORD{ERROR_SUCCESS});
  EXPECT_FALSE(Edit([](DialogUser& user) {
    EXPECT_EQ(PlaceOf(user, SerialPortNumber()), -1);
    user.Click(ID_CANCEL);
  }));
}

TEST_F(SerialEditingTest, PortAndRateChosen_TheNextQueryUsesThem) {
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  EXPECT_EQ(Write(port(), &_CKespCOMPort3::put_BaudRate, br300), S_OK);
  EXPECT_TRUE(Edit([](DialogUser& user) {
    EXPECT_EQ(PlaceOf(user, kMissingPort), -1);
    EXPECT_EQ(user.Selection(ID_ICBO_COM_PORT), 0) << "the first, as its own is not there";
    user.Choose(ID_ICBO_COM_PORT, PlaceOf(user, SerialPortNumber()));
    EXPECT_EQ(user.Selection(ID_CBO_BAUD_RATE), br300);
    user.Choose(ID_CBO_BAUD_RATE, br9600);
    user.Click(ID_OK);
  }));
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_Port), SerialPortNumber());
  wire_.OnBytes("*IDN?\r").Reply("KESP,W1,1,1.0\r\n");
  Text reply;
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(comm_->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(reply.str(), L"KESP,W1,1,1.0");
}

TEST_F(SerialEditingTest, RadioModemConfirmed_HasWhatWasEntered) {
  constexpr std::pair<const char*, const char*> kAnswers[] = {
      {"+++", "OK\r"},      {"ATSH\r", "13A200\r"}, {"ATSL\r", "40A1B2C3\r"}, {"ATPL\r", "3\r"},
      {"ATID\r", "3332\r"}, {"ATCH\r", "C\r"},      {"ATMY\r", "1A\r"},       {"ATCT\r", "F\r"},
  };
  for (const auto& [command, answer] : kAnswers) wire_.OnBytes(command).Reply(answer);
  wire_.OnBytes("\r").Reply("OK\r");
  EXPECT_FALSE(Edit([this](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    user.In(L"RF Modem Properties", [this](DialogUser& modem) {
      // The window is there before the modem has been read.
      EXPECT_TRUE(WaitFor([&] { return !modem.Text(ID_TXT_RF_TIMEOUT).empty(); })) << "no settings";
      EXPECT_EQ(modem.Text(ID_LBL_SERIAL), L"13A20040A1B2C3");
      EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATSH\rATSL\rATPL\rATID\rATCH\rATMY\rATCT\rATCN\r");
      modem.MoveTo(ID_TXT_CHANNEL);
      modem.Type(L"20");
      modem.Click(ID_OK);
      modem.AnswerBox(L"RF Modem Properties", IDYES);
    });
    user.Click(ID_CANCEL);
  }));
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "+++ATID3332\rATCH14\rATMY1A\rATCTF\rATWR\rATCN\r");
  // The outer dialog's Cancel did not take these back.
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_UseRFModem), VARIANT_TRUE);
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_MinBaudRate), br1200);
  EXPECT_EQ(Read(port(), &_CKespCOMPort3::get_MaxBaudRate), br115200);
}

}  // namespace
}  // namespace kesp::clients
