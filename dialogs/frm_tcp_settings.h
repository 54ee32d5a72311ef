// The form of the dialog "TCP/IP Communication Settings": what it shows, what it allows, and what it writes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "dialogs/form.h"
#include "network/kesp_tcp.h"
#include "network/tcp_dialog.h"

namespace kesp {

// frmTCPSettings edits the settings of one network transport. They are read at the first paint and written by
// OK, which checks nothing itself: the transport refuses what it cannot take, in the error box, and what was
// written before that stays written.
class frmTCPSettings final : public Form {
 public:
  enum Page : int { kGeneralPage = 0, kExtendedPage = 1 };

  // Index of each option.
  enum : std::size_t { kKnownAddress = 0, kAutoDiscovery = 1 };

  // The transport outlives the form.
  frmTCPSettings(UserSurface& user, CKespTCP& tcp, const TcpDialogOptions& options);

  // General
  std::array<OptionButton, 2> optTCPType;  // the index is an EIPType; none is selected for any other value
  Label lblIPAddress;
  std::array<TextBox, 4> txtIP;  // the parts of the address, in order
  Label lblPort;
  UpDown udPort;
  TextBox txtPort;

  // Extended
  UpDown udTimeout;
  TextBox txtTimeout;
  CheckBox chkCreateLogFile;

 private:
  void LoadSettings() override;
  bool Validate() override { return true; }
  bool WriteSettings() override;
  void OnKeyPress(TextBox& box, std::int16_t key) override;

  void LoadType();
  void LoadAddress();
  void OnTCPType(std::size_t index);
  void WriteAddress();

  CKespTCP& tcp_;
  const TcpDialogOptions options_;
};

}  // namespace kesp
