// The stage of the RS-232 form's tests: what a user does and sees, in words.
#include "dialogs/frm_com_settings_fixture.h"

#include <utility>

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

frmCOMSettingsView::frmCOMSettingsView(const frmCOMSettings& form, Lines& record)
    : form_(form), record_(record) {}

frmCOMSettingsView::~frmCOMSettingsView() = default;

void frmCOMSettingsView::OnChanged(const Control& control, Change change) {
  record_.push_back(Name(control) + L" " + Words(control, change));
  if (on_changed) on_changed();
}

void frmCOMSettingsView::OnFocus(const Control& control) {
  record_.push_back(Name(control) + L" focused");
}

std::wstring frmCOMSettingsView::Name(const Control& control) const {
  const std::vector<std::pair<const Control*, const wchar_t*>> names = {
      {&form_.icboCOMPort, L"icboCOMPort"},
      {&form_.lblBaudRate, L"lblBaudRate"},
      {&form_.cboBaudRate, L"cboBaudRate"},
      {&form_.chkUseIRDongle, L"chkUseIRDongle"},
      {&form_.chkUseRFModem, L"chkUseRFModem"},
      {&form_.cmdRFProperties, L"cmdRFProperties"},
      {&form_.lblInstrAddress, L"lblInstrAddress"},
      {&form_.txtInstrAddress, L"txtInstrAddress"},
      {&form_.chkUseRedirector, L"chkUseRedirector"},
      {&form_.chkUseSmartSwitch, L"chkUseSmartSwitch"},
      {&form_.lblSmartSwitchStyle, L"lblSmartSwitchStyle"},
      {&form_.icboSmartSwitchStyle, L"icboSmartSwitchStyle"},
      {&form_.cmdTestSmartSwitch, L"cmdTestSmartSwitch"},
      {&form_.cboParity, L"cboParity"},
      {&form_.cboDataBits, L"cboDataBits"},
      {&form_.cboStopBits, L"cboStopBits"},
      {&form_.cboMinBaudRate, L"cboMinBaudRate"},
      {&form_.cboMaxBaudRate, L"cboMaxBaudRate"},
      {&form_.txtTimeout, L"txtTimeout"},
      {&form_.cboControllerStyle, L"cboControllerStyle"},
      {&form_.chkStripCRLF, L"chkStripCRLF"},
      {&form_.chkCheckNonASCII, L"chkCheckNonASCII"},
      {&form_.chkCreateLogFile, L"chkCreateLogFile"},
      {&form_.tabSettings, L"tabSettings"},
      {&form_.framSettings[0], L"framSettings(0)"},
      {&form_.framSettings[1], L"framSettings(1)"},
      {&form_.framSettings[2], L"framSettings(2)"}};
  for (const auto& [named, name] : names) {
    if (named == &control) return name;
  }
  return L"?";
}

std::wstring frmCOMSettingsView::Words(const Control& control, Change change) {
  switch (change) {
    case Change::kEnabled:
      return control.enabled() ? L"enabled" : L"disabled";
    case Change::kVisible:
      return control.visible() ? L"shown" : L"hidden";
    case Change::kText:
      return L"= " + dynamic_cast<const TextBox&>(control).text();
    case Change::kChecked:
      return dynamic_cast<const CheckBox&>(control).checked() ? L"checked" : L"unchecked";
    case Change::kEntries:
      return L"filled";
    case Change::kSelection:
      if (const auto* list = dynamic_cast<const ChoiceList*>(&control)) return L"selects " + Selected(*list);
      return L"selects a page";
    default:
      return L"changed";
  }
}

frmCOMSettingsTest::RFModemDialogFake::RFModemDialogFake() = default;

frmCOMSettingsTest::RFModemDialogFake::~RFModemDialogFake() = default;

void frmCOMSettingsTest::RFModemDialogFake::Show(CKespCOMPort3& port, std::int32_t help_context) {
  ports.push_back(&port);
  help_contexts.push_back(help_context);
  shown_with = {port.Port(), port.MaxBaudRate(), port.MinBaudRate(), port.BaudRate(), port.UseRFModem()};
  if (on_show) on_show();
}

frmCOMSettingsTest::frmCOMSettingsTest() {
  ports_.code = 2;
  ports_.codes = {{1, 0}, {3, 0}};
  AllowRates(0, 13, 6);
  user_.on_box = [this] { record_.push_back(L"Box " + user_.boxes().back().title); };
  modem_dialog_.on_show = [this] { record_.push_back(L"RF dialog"); };
}

frmCOMSettingsTest::~frmCOMSettingsTest() = default;

void frmCOMSettingsTest::AllowNoRate() {
  port_.SetMinBaudRate(EKespBaudRate3::brNone);
  AllowRates(-1, -1, -1);
}

frmCOMSettings& frmCOMSettingsTest::Make(const ComPortDialogOptions& options) {
  form_ = std::make_unique<frmCOMSettings>(user_, port_, options, modem_dialog_);
  view_ = std::make_unique<frmCOMSettingsView>(*form_, record_);
  form_->SetView(view_.get());
  return *form_;
}

frmCOMSettings& frmCOMSettingsTest::Show(const ComPortDialogOptions& options) {
  Make(options).FirstPaint();
  record_.clear();
  return *form_;
}

void frmCOMSettingsTest::ClickOK() {
  Click(form_->cmdOKCancelHelp[Form::kOK]);
}

void frmCOMSettingsTest::Choose(ChoiceList& list, const std::wstring& text) {
  for (std::size_t index = 0; index < list.entries().size(); ++index) {
    if (list.entries()[index].text == text) return form_->Use([&] { list.Choose(index); });
  }
  ADD_FAILURE() << "no such entry: " << SystemCodePage().ToBytes(text);
}

void frmCOMSettingsTest::ExpectBox(const std::wstring& title, const std::wstring& text,
                                   std::uint32_t style) const {
  ASSERT_EQ(user_.boxes().size(), 1u);
  const MessageBoxRequest& box = user_.boxes()[0];
  EXPECT_EQ(box.title, title);
  EXPECT_EQ(box.text, text);
  EXPECT_EQ(box.style, style);
  EXPECT_EQ(box.help_file, L"");
  EXPECT_EQ(box.help_context, 0);
  EXPECT_EQ(user_.pointer_under_boxes()[0], MousePointer::kDefault);
}

void frmCOMSettingsTest::ExpectErrorBox(const std::wstring& action, const std::wstring& failure) const {
  ExpectBox(L"Kesp Communications Error",
            L"An error occurred while attempting to " + action + L".\r\nError: " + failure, 16);
}

}  // namespace kesp
