// Reading the radio modem into its dialog, checking what was entered, and writing it to the modem.
#include "dialogs/frm_rf_modem_settings.h"

#include <string>

#include "dialogs/dialog_ids.h"
#include "dialogs/editing.h"
#include "serial/baud_rate.h"
#include "serial/radio_modem_settings.h"
#include "support/error_trap.h"
#include "support/failure.h"
#include "support/text_edit.h"

namespace kesp {

namespace {

constexpr NumberRange kPANIDs{1, 65535};
constexpr NumberRange kChannels{12, 24};
constexpr NumberRange kAddresses{1, 65535};
constexpr NumberRange kTimeouts{2, 65535};  // milliseconds

constexpr std::int32_t kHighestPowerLevel = 4;

// A device that failed while it was read or written, in the numbers of run-time errors.
constexpr std::int32_t kDeviceError = 57;

constexpr wchar_t kInvalidPANID[] = L"Invalid PAN ID";
constexpr wchar_t kInvalidChannel[] = L"Invalid RF Channel";
constexpr wchar_t kInvalidAddress[] = L"Invalid Modem Address";
constexpr wchar_t kInvalidTimeout[] = L"Invalid Timeout";

bool IsIn(const NumberRange& range, double number) {
  return number >= range.minimum && number <= range.maximum;
}

// "The RF channel entered is invalid. Enter a value between 12 and 24."
std::wstring OutOfRangeMessage(const wchar_t* subject, const NumberRange& range) {
  return std::wstring(L"The ") + subject + L" entered is invalid. Enter a value between " +
         PlainNumber(range.minimum) + L" and " + PlainNumber(range.maximum) + L".";
}

}  // namespace

frmRFModemSettings::frmRFModemSettings(UserSurface& user, CKespCOMPort3& port, std::int32_t help_context)
    : Form(user, L"RF Modem Properties", L"attempting to display the RF modem properties",
           HelpTopic::kRFModemSettings, help_context, {{L"Properties", kPropertiesPage}}),
      txtPANID(*this, ID_TXT_PAN_ID, kPropertiesPage, KeyFilter::kDigits, kPANIDs),
      txtChannel(*this, ID_TXT_CHANNEL, kPropertiesPage, KeyFilter::kDigits, kChannels),
      txtRFModemAddress(*this, ID_TXT_RF_MODEM_ADDRESS, kPropertiesPage, KeyFilter::kDigits, kAddresses),
      txtTimeout(*this, ID_TXT_RF_TIMEOUT, kPropertiesPage, KeyFilter::kDigits, kTimeouts),
      lblSerial(*this, ID_LBL_SERIAL, kPropertiesPage),
      lblPowerLevel(*this, ID_LBL_POWER_LEVEL, kPropertiesPage),
      pbPowerLevel(*this, ID_PB_POWER_LEVEL, kPropertiesPage, 0, kHighestPowerLevel),
      port_(port) {
  lblPowerLevel.SetText(L"Power level");
}

void frmRFModemSettings::LoadSettings() {
  tabSettings.Select(0);
  SwitchPage();
  const bool read = RunTrapped(user(), L"attempting to read settings from RF modem", [this] {
    ReadModem();
    return true;
  });
  // Boxes that were filled in part are not to be written to the modem.
  if (!read) Cancel();
}

void frmRFModemSettings::ReadModem() {
  RadioModemSettings settings;
  // The port shows the busy mouse pointer meanwhile, as it does when it writes.
  if (!port_.RFReadModemSettings(settings)) {
    ShowMessage(user(),
                L"Unable to read settings from RF modem. Make sure the modem is connected to COM" +
                    PlainNumber(port_.Port()) + L" and set to operate at " + BaudRateName(port_.BaudRate()) +
                    L" baud.",
                L"Query RF Modem Settings");
    Cancel();
    return;
  }
  lblSerial.SetText(Trim(settings.serial));
  const std::wstring power_level = Trim(settings.power_level);
  lblPowerLevel.SetText(lblPowerLevel.text() + L" " + power_level);
  pbPowerLevel.SetValue(LeadingNumber(power_level));
  txtPANID.SetText(Trim(settings.pan_id));
  txtChannel.SetText(Trim(settings.channel));
  txtRFModemAddress.SetText(Trim(settings.modem_address));
  txtTimeout.SetText(Trim(settings.timeout));
}

bool frmRFModemSettings::Validate() {
  return RunTrapped(user(), L"attempting to validate settings", [this] {
    if (!IsValid()) return false;
    write_to_nvram_ = AskForNVRAM();
    return true;
  });
}

bool frmRFModemSettings::IsValid() {
  if (txtPANID.text().empty()) return Refuse(txtPANID, kInvalidPANID, L"Enter the RF PAN ID.");
  if (!IsIn(kPANIDs, txtPANID.Value())) {
    return Refuse(txtPANID, kInvalidPANID, OutOfRangeMessage(L"RF PAN ID", kPANIDs));
  }
  if (!IsChannelValid()) return false;
  if (txtRFModemAddress.text().empty()) {
    return Refuse(txtRFModemAddress, kInvalidAddress, L"Enter the RF modem address.");
  }
  if (!IsIn(kAddresses, txtRFModemAddress.Value())) {
    return Refuse(txtRFModemAddress, kInvalidAddress, OutOfRangeMessage(L"RF modem address", kAddresses));
  }
  if (txtTimeout.text().empty()) return Refuse(txtTimeout, kInvalidTimeout, L"Enter a Timeout interval.");
  if (!IsIn(kTimeouts, txtTimeout.Value())) {
    return Refuse(txtTimeout, kInvalidTimeout, OutOfRangeMessage(L"timeout interval", kTimeouts));
  }
  return true;
}

bool frmRFModemSettings::IsChannelValid() {
  if (txtChannel.text().empty()) return Refuse(txtChannel, kInvalidChannel, L"Enter the RF channel.");
  // As it is written: a whole number of 16 bits.
  if (!IsIn(kChannels, ToInteger16(txtChannel.Value()))) {
    return Refuse(txtChannel, kInvalidChannel, OutOfRangeMessage(L"RF channel", kChannels));
  }
  return true;
}

bool frmRFModemSettings::AskForNVRAM() {
  MessageBoxRequest request;
  request.text = L"Do you want to write these settings to NVRAM?";
  request.title = caption();
  request.style = kYesNoButtons;
  return user().ShowMessageBox(request) == kYesAnswer;
}

bool frmRFModemSettings::WriteSettings() {
  return RunTrapped(user(), L"attempting to gather settings", [this] {
    if (!port_.RFWriteModemSettings(ToInteger32(txtPANID.Value()), ToInteger16(txtChannel.Value()),
                                    ToInteger32(txtRFModemAddress.Value()), txtTimeout.Value(),
                                    write_to_nvram_)) {
      // It keeps to itself what the port said.
      throw Failure(kDeviceError, L"KespCommObj",
                    L"Unable to write settings to RF modem. Make sure the modem is connected to COM" +
                        PlainNumber(port_.Port()));
    }
    return true;
  });
}

}  // namespace kesp
