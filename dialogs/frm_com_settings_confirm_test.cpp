// Unit tests of the buttons of the RS-232 form: what OK accepts and writes, and how the dialog ends.
#include <stdexcept>

#include "dialogs/frm_com_settings_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kInvalidRate[] = L"Invalid Baud Rate";
constexpr wchar_t kInvalidAddress[] = L"Invalid Instrument Address";
constexpr wchar_t kSelectPort[] = L"Select a valid COM port to use.";
constexpr wchar_t kRangeWrongWayRound[] =
    L"Cannot set minimum baud rate higher than maximum baud rate setting.";
constexpr wchar_t kAddressOutOfRange[] =
    L"The instrument address entered is invalid. Enter an address between 1 and 65535.";
constexpr wchar_t kOverflow[] = L"6 - Overflow\r\n(KespCommObj)";

class frmCOMSettingsConfirmTest : public frmCOMSettingsTest {
 protected:
  // OK is refused with this one message, behind which the control's page is shown and the control focused.
  void ExpectRefused(const Control& control, const std::wstring& name, const std::wstring& title,
                     const std::wstring& text) {
    const auto before = Settings(port_);
    // The page to be shown is never the one that is seen.
    form_->tabSettings.Choose(control.page() == 0 ? 2 : 0);
    record_.clear();
    user_.SetPointer(MousePointer::kBusy);
    ClickOK();
    ExpectBox(title, text, 64);
    Lines expected = {L"Box " + title, L"tabSettings selects a page"};
    for (int page = 0; page < 3; ++page) {
      expected.push_back(L"framSettings(" + std::to_wstring(page) +
                         (page == control.page() ? L") shown" : L") hidden"));
    }
    expected.push_back(name + L" focused");
    EXPECT_EQ(record_, expected);
    EXPECT_EQ(form_->focused(), &control);
    EXPECT_EQ(form_->tabSettings.selection(), static_cast<std::size_t>(control.page()));
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
    EXPECT_TRUE(Settings(port_) == before);
  }
};

TEST_F(frmCOMSettingsConfirmTest, OK_MinimumAboveMaximum_IsRefused) {
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"9600");
  Choose(form.cboMaxBaudRate, L"4800");
  ExpectRefused(form.cboMinBaudRate, L"cboMinBaudRate", kInvalidRate, kRangeWrongWayRound);
}

TEST_F(frmCOMSettingsConfirmTest, OK_MaximumNotSelected_CountsAsBelowTheMinimum) {
  AllowNoRate();
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"150");
  ExpectRefused(form.cboMinBaudRate, L"cboMinBaudRate", kInvalidRate, kRangeWrongWayRound);
}

TEST_F(frmCOMSettingsConfirmTest, OK_NoPort_IsRefused) {
  ports_.codes.clear();
  Show();
  ExpectRefused(form_->icboCOMPort, L"icboCOMPort", L"Invalid COM Port", kSelectPort);
}

TEST_F(frmCOMSettingsConfirmTest, OK_NoRate_IsRefused) {
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"9600");
  ExpectRefused(form.cboBaudRate, L"cboBaudRate", kInvalidRate, L"Select the baud rate.");
}

TEST_F(frmCOMSettingsConfirmTest, OK_ModemWithoutAddress_IsRefused) {
  Show();
  Click(form_->chkUseRFModem);
  form_->txtInstrAddress.Type(L"");
  ExpectRefused(form_->txtInstrAddress, L"txtInstrAddress", kInvalidAddress,
                L"Enter the instrument address.");
}

class frmCOMSettingsAddressTest : public frmCOMSettingsConfirmTest,
                                  public testing::WithParamInterface<const wchar_t*> {};

TEST_P(frmCOMSettingsAddressTest, OK_ModemWithAddressOutOfRange_IsRefused) {
  Show();
  Click(form_->chkUseRFModem);
  form_->txtInstrAddress.Type(GetParam());
  ExpectRefused(form_->txtInstrAddress, L"txtInstrAddress", kInvalidAddress, kAddressOutOfRange);
}

INSTANTIATE_TEST_SUITE_P(Addresses, frmCOMSettingsAddressTest,
                         testing::Values(L"0", L"70000", L"65536", L"-3", L"0.9", L"x7", L" "));

TEST_F(frmCOMSettingsConfirmTest, OK_SeveralMistakes_TheFirstOneOnly) {
  struct Case {
    bool range;
    bool port;
    bool rate;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {{false, false, false, kRangeWrongWayRound},
                             {true, false, false, kSelectPort},
                             {true, true, false, L"Select the baud rate."},
                             {true, true, true, L"Enter the instrument address."}};
  for (const Case& c : kCases) {
    ports_.codes.clear();
    if (c.port) ports_.codes = {{1, 0}};
    frmCOMSettings& form = Show();
    Click(form.chkUseRFModem);
    form.txtInstrAddress.Type(L"");
    if (!c.rate) Choose(form.cboMinBaudRate, L"9600");
    if (!c.range) Choose(form.cboMaxBaudRate, L"4800");
    const std::size_t boxes = user_.boxes().size();
    ClickOK();
    ASSERT_EQ(user_.boxes().size(), boxes + 1);
    EXPECT_EQ(user_.boxes().back().text, c.text);
  }
}

TEST_F(frmCOMSettingsConfirmTest, OK_AddressesAtTheEnds) {
  for (const auto& [text, address] : {std::pair{L"1", 1}, std::pair{L"32767", 32767}}) {
    Show();
    Click(form_->chkUseRFModem);
    form_->txtInstrAddress.Type(text);
    ClickOK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(port_.InstrAddr(), address);
  }
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsConfirmTest, OK_ModemNotUsed_AddressIsNotChecked) {
  for (const auto& [text, address] : {std::pair{L"", 0}, std::pair{L"-3", -3}, std::pair{L"0", 0}}) {
    port_.SetInstrAddr(5);
    Show();
    form_->txtInstrAddress.Type(text);
    ClickOK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(port_.InstrAddr(), address);
  }
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsConfirmTest, OK_AddressWithoutRoomIn16Bits_IsShownAndTheDialogStays) {
  // Allowed by the check, and not checked at all.
  for (const bool modem : {true, false}) {
    Show();
    if (modem) Click(form_->chkUseRFModem);
    form_->txtInstrAddress.Type(L"40000");
    Click(form_->chkUseRedirector);
    const bool redirector = form_->chkUseRedirector.checked();
    const std::size_t boxes = user_.boxes().size();
    ClickOK();
    ASSERT_EQ(user_.boxes().size(), boxes + 1);
    EXPECT_EQ(user_.boxes().back().text,
              std::wstring(L"An error occurred while attempting to gather communication settings.\r\n"
                           L"Error: ") +
                  kOverflow);
    EXPECT_TRUE(form_->is_open());
    EXPECT_EQ(port_.InstrAddr(), 0);
    EXPECT_EQ(port_.UseRedirector(), redirector);
    EXPECT_EQ(port_.UseRFModem(), modem);
    port_.SetUseRFModem(false);
  }
}

TEST_F(frmCOMSettingsConfirmTest, OK_FailureWhileChecking_IsShownAndTheDialogStays) {
  ports_.codes.clear();
  Show();
  user_.on_box = [&] {
    if (user_.boxes().size() == 1) throw std::runtime_error("no screen");
  };
  ClickOK();
  ASSERT_EQ(user_.boxes().size(), 2u);
  EXPECT_EQ(user_.boxes()[1].title, L"Kesp Communications Error");
  EXPECT_EQ(user_.boxes()[1].text,
            L"An error occurred while attempting to validate communication settings.\r\n"
            L"Error: 51 - Internal error (no screen)\r\n(KespCommObj)");
  EXPECT_TRUE(form_->is_open());
}

TEST_F(frmCOMSettingsConfirmTest, Cancel_ClosesAndWritesNothing) {
  frmCOMSettings& form = Show();
  const auto before = Settings(port_);
  Choose(form.icboCOMPort, L"COM3");
  Choose(form.cboBaudRate, L"300");
  Click(form.chkUseRedirector);
  Click(form.cmdOKCancelHelp[Form::kCancel]);
  EXPECT_FALSE(form.is_open());
  EXPECT_TRUE(form.bCancel());
  EXPECT_TRUE(Settings(port_) == before);
  EXPECT_TRUE(user_.boxes().empty());
}

TEST_F(frmCOMSettingsConfirmTest, Close_IsCancel_ButNotBehindOK) {
  Show().Close();
  EXPECT_FALSE(form_->is_open());
  EXPECT_TRUE(form_->bCancel());

  Show();
  ClickOK();
  form_->Close();
  EXPECT_FALSE(form_->bCancel());
}

TEST_F(frmCOMSettingsConfirmTest, Help_OpensTheTopicAndTheDialogStays) {
  user_.SetHelpFile(L"C:\\Help\\comm.hlp");
  Show();
  Click(form_->cmdOKCancelHelp[Form::kHelp]);
  EXPECT_TRUE(user_.help_calls() ==
              (std::vector<UserSurfaceFake::HelpCall>{
                  {L"C:\\Help\\comm.hlp", 1, static_cast<std::uint32_t>(kHelpTopic), MousePointer::kBusy}}));
  EXPECT_EQ(user_.pointer(), MousePointer::kDefault);
  EXPECT_TRUE(form_->is_open());
  EXPECT_FALSE(form_->bCancel());
}

}  // namespace
}  // namespace kesp
