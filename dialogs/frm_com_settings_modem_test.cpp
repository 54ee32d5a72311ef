// Unit tests of the button that opens the radio modem's properties from the RS-232 form.
#include <stdexcept>

#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kTitle[] = L"Connect RF Modem";

class frmCOMSettingsModemTest : public frmCOMSettingsFixture {
 protected:
  using Modem = RFModemDialogFake::Modem;

  // The form with the use of a modem checked, at a rate of the list; the rate is left to the user where the
  // modem's own is not in the list.
  frmCOMSettings& ShowWithModem(const ComPortDialogOptions& options = kNothing) {
    frmCOMSettings& form = Show(options);
    Click(form.chkUseRFModem);
    record_.clear();
    return form;
  }
  void ClickProperties() { Click(form_->cmdRFProperties); }

  // What the dialog shown was given, and what the transport has now.
  void ExpectShownOnceWith(const Modem& modem) {
    EXPECT_EQ(modem_dialog_.ports, std::vector<const CKespCOMPort3*>{&port_});
    EXPECT_TRUE(modem_dialog_.shown_with == modem);
    ExpectTransport(modem);
  }
  // The question was followed by this failure.
  void ExpectFailed(const std::wstring& failure) {
    const Boxes boxes = user_.TakeBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[1], ErrorBox(L"display the RF modem properties", failure));
  }
  void ExpectTransport(const Modem& modem) const {
    EXPECT_TRUE((Modem{port_.Port(), port_.MaxBaudRate(), port_.MinBaudRate(), port_.BaudRate(),
                       port_.UseRFModem()}) == modem);
  }
};

TEST_F(frmCOMSettingsModemTest, NoPortSelected_IsRefused) {
  ports_.codes.clear();
  ShowWithModem();
  const auto before = SettingsOf(port_);
  user_.SetPointer(MousePointer::kBusy);
  ClickProperties();
  ExpectRemark(L"Invalid COM Port", L"Select a valid COM port to use.");
  EXPECT_TRUE(modem_dialog_.ports.empty());
  EXPECT_TRUE(SettingsOf(port_) == before);
  EXPECT_TRUE(form_->is_open());
}

TEST_F(frmCOMSettingsModemTest, Asks_WithANoteAtOtherRatesThan9600BehindTwoCarriageReturns) {
  Choose(ShowWithModem().icboCOMPort, L"COM3");
  ClickProperties();
  const std::wstring begin = L"Make sure the RF modem is connected to ";
  const std::wstring end = L" Click OK to continue or click Cancel to abort.";
  ExpectBoxes({{begin + L"COM3 and set to operate at 9600 baud." + end, kTitle, 65, L"", 0}});
  AllowRates(8, 13, 10);
  port_.SetUseRFModem(false);
  ShowWithModem();
  ClickProperties();
  ExpectBoxes({{begin +
                    L"COM3 and set to operate at 115200 baud.\r\rNote: The factory default baud rate for the "
                    L"RF modem is 9600." +
                    end,
                kTitle, 65, L"", 0}});
}

TEST_F(frmCOMSettingsModemTest, NoRateSelected_IsRefusedAndWritesNothing) {
  AllowRates(8, 10, 10);
  frmCOMSettings& form = ShowWithModem(kEverything);
  Choose(form.cboMinBaudRate, L"57600");
  ASSERT_EQ(form.cboBaudRate.selected(), nullptr);
  const auto before = SettingsOf(port_);
  ClickProperties();
  ExpectRemark(L"Invalid Baud Rate", L"Select the baud rate.");
  EXPECT_TRUE(modem_dialog_.ports.empty());
  EXPECT_TRUE(SettingsOf(port_) == before);
  EXPECT_TRUE(form.is_open());
}

// No answer at all is that of a box that cannot be shown.
TEST_F(frmCOMSettingsModemTest, AskedAndNotAccepted_WritesAndShowsNothing) {
  for (const int answer : {kCancelAnswer, 0}) {
    Choose(ShowWithModem().icboCOMPort, L"COM3");
    const auto before = SettingsOf(port_);
    bool unchanged = false;
    user_.on_box = [&] { unchanged = SettingsOf(port_) == before; };
    user_.Answer(answer);
    ClickProperties();
    EXPECT_TRUE(unchanged);
    EXPECT_EQ(user_.TakeBoxes().size(), 1u);
    EXPECT_TRUE(SettingsOf(port_) == before);
    EXPECT_TRUE(modem_dialog_.ports.empty());
    EXPECT_TRUE(form_->is_open());
  }
}

TEST_F(frmCOMSettingsModemTest, Accepted_WritesTheTransportAndShowsTheDialog) {
  AllowRates(0, 13, 10);
  port_.SetRFModemPropHCID(815);
  Choose(ShowWithModem().icboCOMPort, L"COM3");
  record_.clear();
  user_.Answer(kOkAnswer);
  ClickProperties();
  EXPECT_EQ(record_, (Lines{L"Box Connect RF Modem", L"RF dialog"}));
  ExpectShownOnceWith({3, EKespBaudRate3::br115200, EKespBaudRate3::br1200, EKespBaudRate3::br9600, true});
  EXPECT_EQ(modem_dialog_.help_contexts, std::vector<std::int32_t>{815});
  EXPECT_TRUE(form_->is_open());
  // Which stays when the form is cancelled.
  Click(form_->cmdOKCancelHelp[Form::kCancel]);
  ExpectTransport({3, EKespBaudRate3::br115200, EKespBaudRate3::br1200, EKespBaudRate3::br9600, true});
}

TEST_F(frmCOMSettingsModemTest, Accepted_WritesNothingElse) {
  frmCOMSettings& form = ShowWithModem(kEverything);
  Click(form.chkUseRedirector);
  Click(form.chkUseSmartSwitch);
  Choose(form.cboParity, L"Even");
  form.txtInstrAddress.Type(L"12");
  form.txtTimeout.Type(L"500");
  const auto before = SettingsOf(port_);
  ClickProperties();
  AllowRates(0, 13, 6);
  port_.SetUseRFModem(false);
  EXPECT_TRUE(SettingsOf(port_) == before);
}

TEST_F(frmCOMSettingsModemTest, NewRangeBelowTheOldOne_HighestIsSetFirst) {
  // Setting the lowest rate to 1200 first would be refused here.
  port_.SetMinBaudRate(EKespBaudRate3::br150);
  port_.SetMaxBaudRate(EKespBaudRate3::br600);
  port_.SetBaudRate(EKespBaudRate3::br300);
  frmCOMSettings& form = ShowWithModem(kEverything);
  Choose(form.cboMaxBaudRate, L"9600");
  Choose(form.cboBaudRate, L"9600");
  ClickProperties();
  ExpectShownOnceWith({1, EKespBaudRate3::br115200, EKespBaudRate3::br1200, EKespBaudRate3::br9600, true});
}

TEST_F(frmCOMSettingsModemTest, RangeAboveTheModems_IsShownAndOnlyThePortIsWritten) {
  AllowRates(11, 13, 11);
  Choose(ShowWithModem().icboCOMPort, L"COM3");
  ClickProperties();
  ExpectFailed(std::to_wstring(com_port_error::ERR_INVALID_BAUD_RATE) +
               L" - Cannot set maximum baud rate lower than minimum baud rate.\r\n"
               L"(CKespCOMPort3 - MaxBaudRate)");
  ExpectTransport({3, EKespBaudRate3::br921600, EKespBaudRate3::br230400, EKespBaudRate3::br230400, false});
  EXPECT_TRUE(modem_dialog_.ports.empty());
}

TEST_F(frmCOMSettingsModemTest, DialogFails_IsShownAndTheWritesStay) {
  ShowWithModem();
  modem_dialog_.on_show = [] { throw std::runtime_error("no window"); };
  ClickProperties();
  ExpectFailed(L"51 - Internal error (no window)\r\n(KespCommObj)");
  ExpectTransport({1, EKespBaudRate3::br115200, EKespBaudRate3::br1200, EKespBaudRate3::br9600, true});
  EXPECT_TRUE(form_->is_open());
}

}  // namespace
}  // namespace kesp
