// Opens every dialog and photographs each of its pages as a PNG file: dialog_pictures <folder>.
//
// The dialogs are the library's own; the transports behind them are those of the unit tests, with ports and a
// radio modem that are the same everywhere. tools/photograph runs it.
#include <gtest/gtest.h>

#include <cstdio>

#include "dialog_user.h"
#include "dialogs/com_port_dialog_win.h"
#include "dialogs/dialog_ids.h"
#include "dialogs/tcp_dialog_win.h"
#include "fake_transports.h"
#include "window_picture.h"

namespace kesp {
namespace {

std::wstring folder;

// Aware of the screen's dots per inch, as programs of today are; the size is that of the system then.
void BecomeDpiAware() {
  SetProcessDPIAware();
}

void Picture(DialogUser& user, const wchar_t* name) {
  // So that nothing on the page is marked.
  user.MoveTo(ID_OK);
  // What the mouse and the focus last changed is painted first.
  user.Settle();
  RedrawWindow(user.window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  user.Settle();
  const std::wstring file = folder + L"\\" + name + L".png";
  EXPECT_TRUE(PictureWindow(user.window(), file));
  std::printf("%ls.png\n", name);
}

void PictureTcp() {
  NetworkOfFakes network;
  network.tcp.SetIPAddress(L"192.168.0.10");
  const DialogUser user(L"TCP/IP Communication Settings", [](DialogUser& u) {
    Picture(u, L"tcp-general");
    u.ClickTab(1);
    Picture(u, L"tcp-extended");
    u.ClickTab(0);
    u.Click(ID_OPT_TCP_TYPE + 1);
    Picture(u, L"tcp-discovery");
    u.Press(VK_ESCAPE);
  });
  SystemTcpDialog().Show(network.tcp, {.show_extended_page = true, .help_context = 0});
}

void PictureModem(DialogUser& user) {
  user.Click(ID_CHK_USE_RF_MODEM);
  user.MoveTo(ID_TXT_INSTR_ADDRESS);
  user.Type(L"17");
  Picture(user, L"rs232-radio-modem");
  user.Click(ID_CMD_RF_PROPERTIES);
  user.In(L"Connect RF Modem", [](DialogUser& box) {
    Picture(box, L"connect-radio-modem");
    box.Press(VK_RETURN);
  });
  user.In(L"RF Modem Properties", [](DialogUser& modem) {
    Picture(modem, L"radio-modem-properties");
    modem.Press(VK_ESCAPE);
  });
}

void PictureSerial() {
  PortsOfFakes transport;
  transport.ConnectModem();
  const DialogUser user(L"RS-232 Communication Settings", [](DialogUser& u) {
    Picture(u, L"rs232-com-port");
    u.ClickTab(1);
    u.Click(ID_CHK_USE_SMART_SWITCH);
    Picture(u, L"rs232-smartswitch");
    u.ClickTab(2);
    Picture(u, L"rs232-extended");
    u.ClickTab(0);
    PictureModem(u);
    u.Press(VK_ESCAPE);
  });
  SystemComPortDialog().Show(transport.port, {.show_extended_page = true,
                                              .show_smart_switch_page = true,
                                              .show_ir_dongle = true,
                                              .help_context = 0});
}

}  // namespace
}  // namespace kesp

int wmain(int count, wchar_t** arguments) {
  if (count != 2) {
    std::fputs("usage: dialog_pictures <folder>\n", stderr);
    return 2;
  }
  testing::InitGoogleTest();
  kesp::folder = arguments[1];
  kesp::BecomeDpiAware();
  kesp::PictureTcp();
  kesp::PictureSerial();
  return testing::UnitTest::GetInstance()->ad_hoc_test_result().Passed() ? 0 : 1;
}
