// What the unit tests of the RS-232 form share: the form over a transport with fakes, and a record of what it
// shows.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/frm_com_settings.h"
#include "serial/kesp_com_port_fixture.h"

namespace kesp {

// The entries as "text value", and "[image]" behind that where there is one.
inline Lines Described(const std::vector<ChoiceList::Entry>& entries) {
  Lines lines;
  for (const ChoiceList::Entry& entry : entries) {
    std::wstring line = entry.text + L" " + std::to_wstring(entry.value);
    if (!entry.image.empty()) line += L" [" + std::wstring(entry.image.begin(), entry.image.end()) + L"]";
    lines.push_back(line);
  }
  return lines;
}

// The text of what is selected; empty for nothing.
inline std::wstring Selected(const ChoiceList& list) {
  return list.selected() == nullptr ? L"" : list.selected()->text;
}

// Writes down each change of a form in words: "cboBaudRate selects 9600", "chkUseRFModem checked".
class frmCOMSettingsView final : public FormView {
 public:
  frmCOMSettingsView(const frmCOMSettings& form, Lines& record) : form_(form), record_(record) {}

  void OnChanged(const Control& control, Change change) override {
    record_.push_back(Name(control) + L" " + Words(control, change));
    if (on_changed) on_changed();
  }
  void OnFocus(const Control& control) override { record_.push_back(Name(control) + L" focused"); }

  // Runs at every change; may throw.
  std::function<void()> on_changed;

 private:
  std::wstring Name(const Control& control) const {
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

  static std::wstring Words(const Control& control, Change change) {
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
        if (const auto* list = dynamic_cast<const ChoiceList*>(&control))
          return L"selects " + Selected(*list);
        return L"selects a page";
      default:
        return L"changed";
    }
  }

  const frmCOMSettings& form_;
  Lines& record_;
};

// The stage: ports 1 and 3 of the machine are free, all others do not exist, and the transport allows every
// rate and uses 9600 baud. The record has what the form shows, from when it was made, and "Box <title>" for
// each message box.
class frmCOMSettingsTest : public CKespCOMPort3Test {
 protected:
  static constexpr std::int32_t kHelpTopic = 4711;
  static constexpr ComPortDialogOptions kNothing{.help_context = kHelpTopic};
  static constexpr ComPortDialogOptions kEverything{.show_extended_page = true,
                                                    .show_smart_switch_page = true,
                                                    .show_ir_dongle = true,
                                                    .help_context = kHelpTopic};

  frmCOMSettingsTest() {
    ports_.code = 2;
    ports_.codes = {{1, 0}, {3, 0}};
    AllowRates(0, 13, 6);
    user_.on_box = [this] { record_.push_back(L"Box " + user_.boxes().back().title); };
    modem_dialog_.on_show = [this] { record_.push_back(L"RF dialog"); };
  }

  // As a new transport has it.
  void AllowNoRate() {
    port_.SetMinBaudRate(EKespBaudRate3::brNone);
    AllowRates(-1, -1, -1);
  }

  frmCOMSettings& Make(const ComPortDialogOptions& options = kEverything) {
    form_ = std::make_unique<frmCOMSettings>(user_, port_, options, modem_dialog_);
    view_ = std::make_unique<frmCOMSettingsView>(*form_, record_);
    form_->SetView(view_.get());
    return *form_;
  }

  // The form as the user finds it.
  frmCOMSettings& Show(const ComPortDialogOptions& options = kEverything) {
    Make(options).FirstPaint();
    record_.clear();
    return *form_;
  }

  // What a user does.
  template <typename Clicked>
  void Click(Clicked& control) {
    form_->Use([&] { control.Click(); });
  }
  void ClickOK() { Click(form_->cmdOKCancelHelp[Form::kOK]); }
  void Choose(ChoiceList& list, const std::wstring& text) {
    for (std::size_t index = 0; index < list.entries().size(); ++index) {
      if (list.entries()[index].text == text) return form_->Use([&] { list.Choose(index); });
    }
    ADD_FAILURE() << "no such entry: " << SystemCodePage().ToBytes(text);
  }

  // Expects that this box is the only one that was shown so far.
  void ExpectBox(const std::wstring& title, const std::wstring& text, std::uint32_t style) const {
    ASSERT_EQ(user_.boxes().size(), 1u);
    const MessageBoxRequest& box = user_.boxes()[0];
    EXPECT_EQ(box.title, title);
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.style, style);
    EXPECT_EQ(box.help_file, L"");
    EXPECT_EQ(box.help_context, 0);
    EXPECT_EQ(user_.pointer_under_boxes()[0], MousePointer::kDefault);
  }
  // The same of an error box; failure is what follows "Error: ".
  void ExpectErrorBox(const std::wstring& action, const std::wstring& failure) const {
    ExpectBox(L"Kesp Communications Error",
              L"An error occurred while attempting to " + action + L".\r\nError: " + failure, 16);
  }

  // The dialog of the modem, which notes what the transport was set to when it was shown.
  class RFModemDialogFake final : public RFModemDialog {
   public:
    void Show(CKespCOMPort3& port, std::int32_t help_context) override {
      ports.push_back(&port);
      help_contexts.push_back(help_context);
      shown_with = {port.Port(), port.MaxBaudRate(), port.MinBaudRate(), port.BaudRate(), port.UseRFModem()};
      if (on_show) on_show();
    }

    struct Modem {
      std::int16_t port = 0;
      EKespBaudRate3 maximum = EKespBaudRate3::brNone;
      EKespBaudRate3 minimum = EKespBaudRate3::brNone;
      EKespBaudRate3 rate = EKespBaudRate3::brNone;
      bool used = false;
      bool operator==(const Modem&) const = default;
    };
    Modem shown_with;
    std::vector<const CKespCOMPort3*> ports;
    std::vector<std::int32_t> help_contexts;
    std::function<void()> on_show;  // may throw
  };

  UserSurfaceFake& user_ = environment_.user;
  Lines record_;
  RFModemDialogFake modem_dialog_;
  std::unique_ptr<frmCOMSettingsView> view_;
  std::unique_ptr<frmCOMSettings> form_;
};

}  // namespace kesp
