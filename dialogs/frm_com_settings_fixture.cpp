// The stage of the RS-232 form's tests: what a user does and sees, in words.
#include "dialogs/frm_com_settings_fixture.h"

#include "dialogs/dialog_ids.h"

namespace kesp {

Lines Described(const std::vector<ChoiceList::Entry>& entries) {
  Lines lines;
  for (const ChoiceList::Entry& entry : entries) {
    std::wstring line = entry.text + L" " + std::to_wstring(entry.value);
    if (!entry.image.empty()) line += L" [" + std::wstring(entry.image.begin(), entry.image.end()) + L"]";
    lines.push_back(line);
  }
  return lines;
}

std::wstring Selected(const ChoiceList& list) {
  return list.selected() == nullptr ? L"" : list.selected()->text;
}

frmCOMSettingsFixture::frmCOMSettingsFixture() {
  ports_.code = 2;
  ports_.codes = {{1, 0}, {3, 0}};
  AllowRates(0, 13, 6);
  user_.on_box = [this] { record_.push_back(L"Box " + user_.boxes().back().title); };
  modem_dialog_.on_show = [this] { record_.push_back(L"RF dialog"); };
  view_.names = {{ID_TAB_SETTINGS, L"tabSettings"},
                 {ID_FRAM_SETTINGS, L"framSettings(0)"},
                 {ID_FRAM_SETTINGS + 1, L"framSettings(1)"},
                 {ID_FRAM_SETTINGS + 2, L"framSettings(2)"},
                 {ID_ICBO_COM_PORT, L"icboCOMPort"},
                 {ID_LBL_BAUD_RATE, L"lblBaudRate"},
                 {ID_CBO_BAUD_RATE, L"cboBaudRate"},
                 {ID_CHK_USE_IR_DONGLE, L"chkUseIRDongle"},
                 {ID_CHK_USE_RF_MODEM, L"chkUseRFModem"},
                 {ID_CMD_RF_PROPERTIES, L"cmdRFProperties"},
                 {ID_LBL_INSTR_ADDRESS, L"lblInstrAddress"},
                 {ID_TXT_INSTR_ADDRESS, L"txtInstrAddress"},
                 {ID_CHK_USE_REDIRECTOR, L"chkUseRedirector"},
                 {ID_CHK_USE_SMART_SWITCH, L"chkUseSmartSwitch"},
                 {ID_LBL_SMART_SWITCH_STYLE, L"lblSmartSwitchStyle"},
                 {ID_ICBO_SMART_SWITCH_STYLE, L"icboSmartSwitchStyle"},
                 {ID_CMD_TEST_SMART_SWITCH, L"cmdTestSmartSwitch"},
                 {ID_CBO_PARITY, L"cboParity"},
                 {ID_CBO_DATA_BITS, L"cboDataBits"},
                 {ID_CBO_STOP_BITS, L"cboStopBits"},
                 {ID_CBO_MIN_BAUD_RATE, L"cboMinBaudRate"},
                 {ID_CBO_MAX_BAUD_RATE, L"cboMaxBaudRate"},
                 {ID_TXT_TIMEOUT, L"txtTimeout"},
                 {ID_CBO_CONTROLLER_STYLE, L"cboControllerStyle"},
                 {ID_CHK_STRIP_CRLF, L"chkStripCRLF"},
                 {ID_CHK_CHECK_NON_ASCII, L"chkCheckNonASCII"},
                 {ID_CHK_CREATE_LOG_FILE, L"chkCreateLogFile"}};
}

frmCOMSettingsFixture::~frmCOMSettingsFixture() = default;

void frmCOMSettingsFixture::AllowNoRate() {
  port_.SetMinBaudRate(EKespBaudRate3::brNone);
  AllowRates(-1, -1, -1);
}

frmCOMSettings& frmCOMSettingsFixture::Make(const ComPortDialogOptions& options) {
  form_ = std::make_unique<frmCOMSettings>(user_, port_, options, modem_dialog_);
  form_->SetView(&view_);
  return *form_;
}

frmCOMSettings& frmCOMSettingsFixture::Show(const ComPortDialogOptions& options) {
  Make(options).FirstPaint();
  record_.clear();
  return *form_;
}

void frmCOMSettingsFixture::ClickOK() {
  Click(form_->cmdOKCancelHelp[Form::kOK]);
}

void frmCOMSettingsFixture::Choose(ChoiceList& list, const std::wstring& text) {
  for (std::size_t index = 0; index < list.entries().size(); ++index) {
    if (list.entries()[index].text == text) return form_->Use([&] { list.Choose(index); });
  }
  ADD_FAILURE() << "no such entry: " << testing::PrintToString(text);
}

void frmCOMSettingsFixture::ExpectRemark(const std::wstring& title, const std::wstring& text) {
  ExpectBoxes({Remark(title, text)});
  EXPECT_EQ(user_.pointer_under_boxes().back(), MousePointer::kDefault);
}

}  // namespace kesp
