// The RS-232 dialog, used in any order: what Cancel leaves as it was, and what OK writes.
#include <optional>
#include <tuple>

#include "dialogs/frm_com_settings.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"
#include "tests/fuzz/form_user.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

auto SettingsOf(const CKespCOMPort3& port) {
  return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.TimeOut(),
                    port.StripCRLF(), port.CheckNonAscii(), port.DataBits(), port.StopBits(), port.Parity(),
                    port.ControllerStyle(), port.UseSmartSwitch(), port.SmartSwitch()->Style(),
                    port.UseIRDongle(), port.UseRFModem(), port.UseRedirector(), port.InstrAddr(),
                    port.CreateLogFile());
}

class NoModemDialog final : public RFModemDialog {
 public:
  void Show(CKespCOMPort3&, std::int32_t) override { ++shown; }
  int shown = 0;
};

template <typename Value>
Value Near(FuzzInput& input, int count) {
  return static_cast<Value>(static_cast<int>(input.Below(static_cast<std::size_t>(count) + 2)) - 1);
}

void Prepare(CKespCOMPort3& port, FuzzInput& input) {
  const auto lowest = static_cast<int>(input.Below(15)) - 1;
  const auto highest = lowest + static_cast<int>(input.Below(static_cast<std::size_t>(14 - lowest)));
  port.SetMaxBaudRate(static_cast<EKespBaudRate3>(highest));
  port.SetMinBaudRate(static_cast<EKespBaudRate3>(lowest));
  port.SetBaudRate(static_cast<EKespBaudRate3>(input.Flag() ? lowest : highest));
  port.SetControllerStyle(Near<EKespControllerStyle3>(input, 5));
  port.SetParity(Near<EKespParity3>(input, 5));
  port.SetDataBits(Near<EKespDataBits3>(input, 9));
  port.SetStopBits(Near<EKespStopBits3>(input, 3));
  port.SetPort(static_cast<std::int16_t>(1 + input.Below(6)));
  port.SetUseRFModem(input.Flag());
  port.SetUseIRDongle(input.Flag());
  port.SetUseSmartSwitch(input.Flag());
  port.SetInstrAddr(static_cast<std::int16_t>(input.Word()));
  port.SetTimeOut(input.Word());
}

// Where nothing is selected, the value is left to the transport.
template <typename Value>
bool IsShown(const ChoiceList& list, Value value) {
  return value == list.SelectedAs(value);
}

void RequireRules(const CKespCOMPort3& port, const ComPortDialogOptions& options) {
  Require(port.Port() >= 1 && port.Port() <= 256, "the port is one of 256");
  Require(port.TimeOut() >= 0, "the timeout is not negative");
  Require(port.MinBaudRate() <= port.MaxBaudRate(), "the range is the right way round");
  if (!options.show_ir_dongle) return;
  Require(!port.UseRFModem() || !port.UseIRDongle(), "modem and infrared adapter exclude each other");
}

void RequireWritten(const frmCOMSettings& form, const CKespCOMPort3& port,
                    const ComPortDialogOptions& options) {
  RequireRules(port, options);
  Require(form.icboCOMPort.selected() != nullptr && form.cboBaudRate.selected() != nullptr, "all is chosen");
  Require(form.icboCOMPort.selected()->value == port.Port(), "the port is the one chosen");
  Require(IsShown(form.cboBaudRate, port.BaudRate()), "so is the rate");
  Require(port.BaudRate() >= port.MinBaudRate() && port.BaudRate() <= port.MaxBaudRate(), "it is in range");
  Require(form.chkUseRFModem.checked() == port.UseRFModem(), "so is the modem");
  Require(form.chkUseRedirector.checked() == port.UseRedirector(), "so is the redirector");
  Require(!port.UseRFModem() || port.InstrAddr() >= 1, "behind a modem there is an address");
  if (!options.show_extended_page) return;
  Require(IsShown(form.cboParity, port.Parity()), "the parity is the one chosen");
  Require(IsShown(form.cboMinBaudRate, port.MinBaudRate()), "so is the lowest rate");
  Require(form.chkStripCRLF.checked() == port.StripCRLF(), "so is what becomes of line ends");
}

class DialogInUse {
 public:
  explicit DialogInUse(FuzzInput& input)
      : input_(input),
        options_{.show_extended_page = input.Flag(),
                 .show_smart_switch_page = input.Flag(),
                 .show_ir_dongle = input.Flag()} {
    // Time passes by looking at the clock.
    environment_.clock.SetStepPerReading(100);
    ports_.code = 2;
    for (std::int16_t port = 1; port < 5; ++port) {
      if (input.Flag()) ports_.codes[port] = 0;
    }
    Prepare(port_, input);
    form_.emplace(environment_.user, port_, options_, modem_);
  }

  void Run() {
    const auto loaded = SettingsOf(port_);
    form_->FirstPaint();
    Require(SettingsOf(port_) == loaded, "loading changes no setting");
    FormUser user(*form_, input_);
    while (input_.HasMore() && form_->is_open()) {
      const std::uint8_t step = input_.Byte();
      if (step < 0xD0) {
        UseOne(user);
      } else if (step < 0xF8) {
        Confirm(user, (step & 1) != 0);
      } else {
        Cancel(user);
      }
      RequireForm(*form_);
      // A test of the switch that fails leaves it busy.
      const bool is_plain = environment_.user.pointer() == MousePointer::kDefault;
      Require(is_plain || has_tested_, "the pointer is the plain one again");
    }
  }

 private:
  void UseOne(FormUser& user) {
    Control& control = user.ChooseControl();
    const auto before = SettingsOf(port_);
    // The answer to the question before the modem's properties.
    if (input_.Flag()) environment_.user.Answer(kCancelAnswer);
    user.Use(control);
    has_tested_ = has_tested_ || &control == &form_->cmdTestSmartSwitch;
    const bool acts_at_once = &control == &form_->cboControllerStyle || &control == &form_->cmdRFProperties;
    Require(acts_at_once || SettingsOf(port_) == before, "using a control changes no setting");
    Require(form_->is_open(), "only OK and Cancel end the dialog");
  }

  void Confirm(FormUser& user, bool by_mouse) {
    const std::size_t boxes = environment_.user.boxes().size();
    user.Confirm(by_mouse);
    if (form_->is_open()) {
      Require(environment_.user.boxes().size() > boxes, "a user is told why OK did nothing");
    } else {
      Require(!form_->bCancel(), "OK is not Cancel");
      RequireWritten(*form_, port_, options_);
    }
  }

  void Cancel(FormUser& user) {
    const auto before = SettingsOf(port_);
    user.Cancel();
    Require(!form_->is_open() && form_->bCancel(), "Cancel ends the dialog");
    Require(SettingsOf(port_) == before, "Cancel changes no setting");
  }

  FuzzInput& input_;
  const ComPortDialogOptions options_;
  EnvironmentFake environment_;
  SerialPortsFake ports_{environment_.clock};
  CKespCOMPort3 port_{environment_.environment, ports_};
  NoModemDialog modem_;
  std::optional<frmCOMSettings> form_;
  bool has_tested_ = false;
};

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::DialogInUse(input).Run();
  return 0;
}
