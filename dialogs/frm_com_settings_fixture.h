// What the unit tests of the RS-232 form share: the form over a transport with fakes, and a record of what it
// shows.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dialogs/form_view_fake.h"
#include "dialogs/frm_com_settings.h"
#include "serial/kesp_com_port_fixture.h"

namespace kesp {

// The entries as "text value", and "[image]" behind that where there is one.
Lines Described(const std::vector<ChoiceList::Entry>& entries);

// The text of what is selected; empty for nothing.
std::wstring Selected(const ChoiceList& list);

// The stage: ports 1 and 3 of the machine are free, all others do not exist, and the transport allows every
// rate and uses 9600 baud. The record has what the form shows, its controls by their names, from when it was
// made, and "Box <title>" for each message box.
class frmCOMSettingsFixture : public CKespCOMPort3Fixture {
 protected:
  static constexpr std::int32_t kHelpTopic = 4711;
  static constexpr ComPortDialogOptions kNothing{.help_context = kHelpTopic};
  static constexpr ComPortDialogOptions kEverything{.show_extended_page = true,
                                                    .show_smart_switch_page = true,
                                                    .show_ir_dongle = true,
                                                    .help_context = kHelpTopic};

  frmCOMSettingsFixture();
  ~frmCOMSettingsFixture() override;

  // As a new transport has it.
  void AllowNoRate();

  frmCOMSettings& Make(const ComPortDialogOptions& options = kEverything);

  // The form as the user finds it.
  frmCOMSettings& Show(const ComPortDialogOptions& options = kEverything);

  // What a user does.
  template <typename Clicked>
  void Click(Clicked& control) {
    form_->Use([&] { control.Click(); });
  }
  void ClickOK();
  void Choose(ChoiceList& list, const std::wstring& text);

  // Expects that these boxes were shown since the last time.
  void ExpectBoxes(const Boxes& expected) { EXPECT_EQ(user_.TakeBoxes(), expected); }
  // Expects this one, under the default pointer.
  void ExpectRemark(const std::wstring& title, const std::wstring& text);

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
  FormViewFake view_;
  Lines& record_ = view_.lines;
  RFModemDialogFake modem_dialog_;
  std::unique_ptr<frmCOMSettings> form_;
};

}  // namespace kesp
