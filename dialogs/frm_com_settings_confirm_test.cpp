// Unit tests of what OK accepts in the RS-232 form, and where it takes the user otherwise.
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

class frmCOMSettingsConfirmTest : public frmCOMSettingsFixture {
 protected:
  // OK is refused with this one message, behind which the control's page is shown and the control focused.
  void ExpectRefused(const Control& control, const std::wstring& title, const std::wstring& text) {
    const auto before = SettingsOf(port_);
    // The page to be shown is never the one that is seen.
    form_->tabSettings.Choose(control.page() == 0 ? 2 : 0);
    record_.clear();
    user_.SetPointer(MousePointer::kBusy);
    ClickOK();
    ExpectRemark(title, text);
    const auto page = static_cast<std::size_t>(control.page());
    Lines expected = {L"Box " + title, L"tabSettings selects " + form_->tabSettings.tabs()[page].caption};
    for (std::size_t each = 0; each < 3; ++each) {
      expected.push_back(L"framSettings(" + std::to_wstring(each) +
                         (each == page ? L") shown" : L") hidden"));
    }
    expected.push_back(view_.names.at(control.id()) + L" focused");
    EXPECT_EQ(record_, expected);
    EXPECT_EQ(form_->focused(), &control);
    EXPECT_TRUE(form_->is_open());
    EXPECT_FALSE(form_->bCancel());
    EXPECT_TRUE(SettingsOf(port_) == before);
  }
};

TEST_F(frmCOMSettingsConfirmTest, MinimumAboveMaximum_IsRefused) {
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"9600");
  Choose(form.cboMaxBaudRate, L"4800");
  ExpectRefused(form.cboMinBaudRate, kInvalidRate, kRangeWrongWayRound);
}

TEST_F(frmCOMSettingsConfirmTest, MaximumNotSelected_CountsAsBelowTheMinimum) {
  AllowNoRate();
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"150");
  ExpectRefused(form.cboMinBaudRate, kInvalidRate, kRangeWrongWayRound);
}

TEST_F(frmCOMSettingsConfirmTest, NoPort_IsRefused) {
  ports_.codes.clear();
  Show();
  ExpectRefused(form_->icboCOMPort, L"Invalid COM Port", kSelectPort);
}

TEST_F(frmCOMSettingsConfirmTest, NoRate_IsRefused) {
  frmCOMSettings& form = Show();
  Choose(form.cboMinBaudRate, L"9600");
  ExpectRefused(form.cboBaudRate, kInvalidRate, L"Select the baud rate.");
}

TEST_F(frmCOMSettingsConfirmTest, ModemWithoutAnAddressOfItsRange_IsRefused) {
  Show();
  Click(form_->chkUseRFModem);
  for (const wchar_t* address : {L"", L"0", L"70000", L"65536", L"-3", L"0.9", L"x7", L" "}) {
    SCOPED_TRACE(address);
    form_->txtInstrAddress.Type(address);
    ExpectRefused(form_->txtInstrAddress, kInvalidAddress,
                  *address == L'\0' ? L"Enter the instrument address." : kAddressOutOfRange);
  }
}

TEST_F(frmCOMSettingsConfirmTest, SeveralMistakes_TheFirstOneOnly) {
  struct Case {
    bool range;
    bool port;
    bool rate;
    MessageBoxRequest box;
  };
  const Case cases[] = {{false, false, false, Remark(kInvalidRate, kRangeWrongWayRound)},
                        {true, false, false, Remark(L"Invalid COM Port", kSelectPort)},
                        {true, true, false, Remark(kInvalidRate, L"Select the baud rate.")},
                        {true, true, true, Remark(kInvalidAddress, L"Enter the instrument address.")}};
  for (const Case& c : cases) {
    ports_.codes.clear();
    if (c.port) ports_.codes = {{1, 0}};
    frmCOMSettings& form = Show();
    Click(form.chkUseRFModem);
    form.txtInstrAddress.Type(L"");
    if (!c.rate) Choose(form.cboMinBaudRate, L"9600");
    if (!c.range) Choose(form.cboMaxBaudRate, L"4800");
    ClickOK();
    ExpectBoxes({c.box});
  }
}

TEST_F(frmCOMSettingsConfirmTest, Address_IsCheckedForAModemOnly) {
  const struct {
    bool modem;
    const wchar_t* text;
    int address;
  } rows[] = {
      {true, L"1", 1}, {true, L"32767", 32767}, {false, L"", 0}, {false, L"-3", -3}, {false, L"0", 0}};
  for (const auto& row : rows) {
    port_.SetUseRFModem(row.modem);
    port_.SetInstrAddr(5);
    Show();
    form_->txtInstrAddress.Type(row.text);
    ClickOK();
    EXPECT_FALSE(form_->is_open());
    EXPECT_EQ(port_.InstrAddr(), row.address);
  }
  ExpectBoxes({});
}

TEST_F(frmCOMSettingsConfirmTest, AddressWithoutRoomIn16Bits_IsShownAndTheDialogStays) {
  // Allowed by the check, and not checked at all.
  for (const bool modem : {true, false}) {
    Show();
    if (modem) Click(form_->chkUseRFModem);
    form_->txtInstrAddress.Type(L"40000");
    Click(form_->chkUseRedirector);
    const bool redirector = form_->chkUseRedirector.checked();
    ClickOK();
    ExpectBoxes({ErrorBox(L"gather communication settings", L"6 - Overflow\r\n(KespCommObj)")});
    EXPECT_TRUE(form_->is_open());
    EXPECT_EQ(port_.InstrAddr(), 0);
    EXPECT_EQ(port_.UseRedirector(), redirector);
    EXPECT_EQ(port_.UseRFModem(), modem);
    port_.SetUseRFModem(false);
  }
}

TEST_F(frmCOMSettingsConfirmTest, FailureWhileChecking_IsShownAndTheDialogStays) {
  ports_.codes.clear();
  Show();
  user_.on_box = [&] {
    if (user_.boxes().size() == 1) throw std::runtime_error("no screen");
  };
  ClickOK();
  ExpectBoxes(
      {Remark(L"Invalid COM Port", kSelectPort),
       ErrorBox(L"validate communication settings", L"51 - Internal error (no screen)\r\n(KespCommObj)")});
  EXPECT_TRUE(form_->is_open());
}

}  // namespace
}  // namespace kesp
