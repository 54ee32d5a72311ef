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
#include "network/counting_instrument_fake.h"
#include "network/kesp_tcp.h"
#include "network/socket_control_fake.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"
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
  EnvironmentFake fakes;
  CKespTCP tcp(
      fakes.environment,
      [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); }, MakeInstrument);
  tcp.SetIPAddress(L"192.168.0.10");
  tcp.SetPort(5025);
  DialogUser user(L"TCP/IP Communication Settings", [](DialogUser& u) {
    Picture(u, L"tcp-general");
    u.ClickTab(1);
    Picture(u, L"tcp-extended");
    u.ClickTab(0);
    u.Click(ID_OPT_TCP_TYPE + 1);
    Picture(u, L"tcp-discovery");
    u.Press(VK_ESCAPE);
  });
  SystemTcpDialog().Show(tcp, {.show_extended_page = true, .help_context = 0});
}

// A radio modem that answers what it is asked.
void AnswerAsModem(SerialLineFake& line) {
  const std::pair<const char*, const char*> answers[] = {
      {"+++", "OK\r"},    {"ATSH\r", "13A200\r"}, {"ATSL\r", "40B0C1D2\r"},
      {"ATPL\r", "4\r"},  {"ATID\r", "3332\r"},   {"ATCH\r", "C\r"},
      {"ATMY\r", "1A\r"}, {"ATCT\r", "64\r"},     {"ATCN\r", "OK\r"}};
  for (const auto& [question, answer] : answers) line.Answer(question, answer);
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
  EnvironmentFake fakes;
  SerialPortsFake ports(fakes.clock);
  ports.code = 2;  // no such port
  ports.codes = {{1, 0}, {3, 0}, {7, 0}};
  AnswerAsModem(ports.line);
  fakes.clock.SetStepPerReading(1);
  CKespCOMPort3 port(fakes.environment, ports);
  port.SetMaxBaudRate(EKespBaudRate3::br115200);
  port.SetMinBaudRate(EKespBaudRate3::br300);
  port.SetBaudRate(EKespBaudRate3::br57600);
  port.SetPort(3);
  DialogUser user(L"RS-232 Communication Settings", [](DialogUser& u) {
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
  SystemComPortDialog().Show(port, {.show_extended_page = true,
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
