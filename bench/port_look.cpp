// Asking for every port number, by the transport and by opening each name.
#include "bench/port_look.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/dialog_opening.h"
#include "bench/measure.h"
#include "bench/table.h"
#include "dialogs/frm_com_settings.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_ports_win.h"
#include "support/environment_win.h"

namespace kesp::bench {

namespace {

constexpr std::int16_t kLastPort = 256;

class NoModemDialog final : public RFModemDialog {
 public:
  void Show(CKespCOMPort3& /*port*/, std::int32_t /*help_context*/) override {
    throw std::logic_error("nobody asked for the radio modem");
  }
};

std::vector<std::wstring> DeviceNames() {
  std::vector<std::wstring> names;
  for (int n = 1; n <= kLastPort; ++n) names.push_back(LR"(\\.\COM)" + std::to_wstring(n));
  return names;
}

int OpenEach(const std::vector<std::wstring>& names) {
  int opened = 0;
  for (const std::wstring& name : names) {
    HANDLE handle = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_OVERLAPPED, nullptr);
    if (handle == INVALID_HANDLE_VALUE) continue;
    ++opened;
    CloseHandle(handle);
  }
  return opened;
}

int AskForEach(CKespCOMPort3& port) {
  int found = 0;
  for (std::int16_t n = 1; n <= kLastPort; ++n) {
    if (port.IsPortAvailable(n)) ++found;
  }
  return found;
}

}  // namespace

void MeasurePortLook(const SerialClient& client) {
  const std::vector<std::wstring> names = DeviceNames();
  CKespCOMPort3 port(SystemEnvironment(), SystemSerialPorts());
  NoModemDialog modem;
  const ComPortDialogOptions everything{
      .show_extended_page = true, .show_smart_switch_page = true, .show_ir_dongle = true, .help_context = 0};
  const auto open = [&] { OpenEach(names); };
  const auto ask = [&] { AskForEach(port); };
  const auto make = [&] { const frmCOMSettings form(SystemEnvironment().user, port, everything, modem); };

  std::printf("\n%d ports offered, %d opened\n", AskForEach(port), OpenEach(names));
  PrintHeading("ms");
  Print("IsPortAvailable for 256 / CreateFile", InMilliseconds(MeasureInTurn(21, 5, ask, open)));
  Print("frmCOMSettings made / CreateFile", InMilliseconds(MeasureInTurn(21, 5, make, open)));
  const DialogOpening opening = MeasureDialogOpening(client);
  Print("Edit until the dialog takes input, first time", InMilliseconds(opening.first_in_process));
  Print("Edit until the dialog takes input, later", InMilliseconds(opening.later));
}

}  // namespace kesp::bench
