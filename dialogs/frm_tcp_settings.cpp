// Filling the TCP/IP dialog, what its controls do to one another, and writing it back.
#include "dialogs/frm_tcp_settings.h"

#include <string>
#include <string_view>

#include "dialogs/dialog_ids.h"
#include "dialogs/editing.h"
#include "dialogs/timeout_arrows.h"
#include "support/error_trap.h"

namespace kesp {

namespace {

constexpr NumberRange kOctet{0, 255};

// What the arrows allow, and how far one press of them goes.
constexpr std::int32_t kLowestPort = 1;
constexpr std::int32_t kHighestPort = 65535;
constexpr std::int32_t kPortStep = 1;

}  // namespace

frmTCPSettings::frmTCPSettings(UserSurface& user, CKespTCP& tcp, const TcpDialogOptions& options)
    : Form(user, L"TCP/IP Communication Settings", L"attempting to edit TCP/IP settings",
           HelpTopic::kTCPSettings, options.help_context,
           {{L"General", kGeneralPage}, {L"Extended", kExtendedPage}}),
      optTCPType{{{*this, ID_OPT_TCP_TYPE, kGeneralPage}, {*this, ID_OPT_TCP_TYPE + 1, kGeneralPage}}},
      lblIPAddress(*this, ID_LBL_IP_ADDRESS, kGeneralPage),
      txtIP{{{*this, ID_TXT_IP, kGeneralPage, KeyFilter::kDigits, kOctet},
             {*this, ID_TXT_IP + 1, kGeneralPage, KeyFilter::kDigits, kOctet},
             {*this, ID_TXT_IP + 2, kGeneralPage, KeyFilter::kDigits, kOctet},
             {*this, ID_TXT_IP + 3, kGeneralPage, KeyFilter::kDigits, kOctet}}},
      lblPort(*this, ID_LBL_PORT, kGeneralPage),
      udPort(*this, ID_UD_PORT, kGeneralPage, kLowestPort, kHighestPort, kPortStep),
      txtPort(*this, ID_TXT_PORT, kGeneralPage, KeyFilter::kDigits, udPort),
      udTimeout(*this, ID_UD_TCP_TIMEOUT, kExtendedPage, kShortestTimeout, kLongestTimeout, kTimeoutStep),
      txtTimeout(*this, ID_TXT_TCP_TIMEOUT, kExtendedPage, KeyFilter::kDigits, udTimeout),
      chkCreateLogFile(*this, ID_CHK_TCP_LOG_FILE, kExtendedPage),
      tcp_(tcp),
      options_(options) {
  for (std::size_t index = 0; index < optTCPType.size(); ++index) {
    optTCPType[index].on_click = [this, index] { OnTCPType(index); };
  }
  if (!options_.show_extended_page) tabSettings.Remove(1);
}

void frmTCPSettings::LoadSettings() {
  if (options_.show_extended_page) {
    chkCreateLogFile.SetChecked(tcp_.CreateLogFile());
    txtTimeout.SetText(PlainNumber(tcp_.TimeOutmSecs()));
  }
  LoadType();
  LoadAddress();
  txtPort.SetText(PlainNumber(tcp_.Port()));
  if (txtIP[0].enabled()) Focus(txtIP[0]);
}

void frmTCPSettings::LoadType() {
  // Nothing keeps a client from storing a type that there is no option for.
  const auto index = static_cast<std::size_t>(tcp_.IPType());
  if (index < optTCPType.size()) optTCPType[index].Select();
}

// A box without a part of its own keeps its content, and parts without a box are not shown.
void frmTCPSettings::LoadAddress() {
  std::wstring_view rest = tcp_.IPAddress();
  for (TextBox& box : txtIP) {
    const std::size_t dot = rest.find(L'.');
    box.SetText(PlainNumber(LeadingNumber(rest.substr(0, dot))));
    if (dot == std::wstring_view::npos) return;
    rest.remove_prefix(dot + 1);
  }
}

void frmTCPSettings::OnTCPType(std::size_t index) {
  for (OptionButton& option : optTCPType) {
    if (&option != &optTCPType[index]) option.Deselect();
  }
  lblIPAddress.Enable(index == kKnownAddress);
  for (TextBox& box : txtIP) box.Enable(lblIPAddress.enabled());
  lblPort.Enable(lblIPAddress.enabled());
  txtPort.Enable(lblIPAddress.enabled());
  udPort.Enable(lblIPAddress.enabled());
}

void frmTCPSettings::OnKeyPress(TextBox& box, std::int16_t key) {
  if (key != L'.') return;
  for (std::size_t index = 0; index < txtIP.size(); ++index) {
    if (&txtIP[index] == &box) Focus(txtIP[(index + 1) % txtIP.size()]);
  }
}

bool frmTCPSettings::WriteSettings() {
  return RunTrapped(user(), L"attempting to gather communication settings", [this] {
    if (options_.show_extended_page) {
      tcp_.SetTimeOutmSecs(ToInteger16(txtTimeout.Value()));
      tcp_.SetCreateLogFile(chkCreateLogFile.checked());
    }
    if (optTCPType[kKnownAddress].selected()) {
      WriteAddress();
    } else {
      // Address and port stay for the next time that they are asked for.
      tcp_.SetIPType(EIPType::ipDynamic);
    }
    return true;
  });
}

void frmTCPSettings::WriteAddress() {
  tcp_.SetIPAddress(txtIP[0].text() + L"." + txtIP[1].text() + L"." + txtIP[2].text() + L"." +
                    txtIP[3].text());
  tcp_.SetPort(ToInteger16(txtPort.Value()));
  tcp_.SetIPType(EIPType::ipStatic);
}

}  // namespace kesp
