// What the tests of the dialogs' windows share: transports whose ports and hosts are fakes, and somebody at
// the screen.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

namespace kesp {

using Texts = std::vector<std::wstring>;
using Numbers = std::vector<int>;

inline constexpr wchar_t kTcpCaption[] = L"TCP/IP Communication Settings";
inline constexpr wchar_t kComCaption[] = L"RS-232 Communication Settings";
inline constexpr wchar_t kModemCaption[] = L"RF Modem Properties";

// Expects a remark: an information box with that text and nothing but an OK button.
inline void ExpectRemark(const BoxContents& box, const std::wstring& text) {
  EXPECT_EQ(box.texts, Texts{text});
  EXPECT_EQ(box.buttons, Texts{L"OK"});
  EXPECT_EQ(box.icon, LoadIconW(nullptr, reinterpret_cast<const wchar_t*>(IDI_ASTERISK)));
}

// Expects an error box with that text.
inline void ExpectErrorBox(const BoxContents& box, const std::wstring& text) {
  EXPECT_EQ(box.texts, Texts{text});
  EXPECT_EQ(box.buttons, Texts{L"OK"});
  EXPECT_EQ(box.icon, LoadIconW(nullptr, reinterpret_cast<const wchar_t*>(IDI_HAND)));
}

// The controls that the Tab key goes through, from the one that has the focus until that one comes again.
inline Numbers TabOrder(DialogUser& user, bool backwards = false) {
  constexpr std::size_t kMany = 40;
  Numbers order{user.Focus()};
  while (order.size() < kMany) {
    if (backwards) {
      user.PressWith({VK_SHIFT}, VK_TAB);
    } else {
      user.Press(VK_TAB);
    }
    if (user.Focus() == order.front()) break;
    order.push_back(user.Focus());
  }
  return order;
}

// What is in the clipboard from now on.
inline void Copy(const std::wstring& text) {
  const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  CopyMemory(GlobalLock(memory), text.c_str(), size);
  GlobalUnlock(memory);
  // Another program may be looking at it.
  EXPECT_TRUE(WaitFor([] { return OpenClipboard(nullptr) != FALSE; }));
  EmptyClipboard();
  SetClipboardData(CF_UNICODETEXT, memory);
  CloseClipboard();
}

inline std::wstring Copied() {
  EXPECT_TRUE(WaitFor([] { return OpenClipboard(nullptr) != FALSE; }));
  HANDLE memory = GetClipboardData(CF_UNICODETEXT);
  const std::wstring text = memory == nullptr ? L"" : static_cast<const wchar_t*>(GlobalLock(memory));
  if (memory != nullptr) GlobalUnlock(memory);
  CloseClipboard();
  return text;
}

class TcpDialogStage : public testing::Test {
 protected:
  TcpDialogStage() { tcp_.SetPort(5025); }

  bool Show(const DialogUser::Act& act, const TcpDialogOptions& options = {.show_extended_page = true}) {
    DialogUser user(kTcpCaption, act);
    return SystemTcpDialog().Show(tcp_, options);
  }

  EnvironmentFake fakes_;
  CKespTCP tcp_{fakes_.environment,
                [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); },
                MakeInstrument};
};

// Ports 1, 3 and 7 of the machine are free, all others do not exist; the transport uses port 3 at 57600 baud.
class ComDialogStage : public testing::Test {
 protected:
  static constexpr ComPortDialogOptions kEverything{
      .show_extended_page = true, .show_smart_switch_page = true, .show_ir_dongle = true};

  ComDialogStage() {
    fakes_.clock.SetStepPerReading(1);
    ports_.code = 2;  // no such port
    ports_.codes = {{1, 0}, {3, 0}, {7, 0}};
    port_.SetMaxBaudRate(EKespBaudRate3::br115200);
    port_.SetMinBaudRate(EKespBaudRate3::br300);
    port_.SetBaudRate(EKespBaudRate3::br57600);
    port_.SetPort(3);
  }

  bool Show(const DialogUser::Act& act, const ComPortDialogOptions& options = kEverything) {
    DialogUser user(kComCaption, act);
    return SystemComPortDialog().Show(port_, options);
  }

  // Behind the port there is a radio modem that answers what it is asked.
  void ConnectModem() {
    const std::pair<const char*, const char*> answers[] = {
        {"+++", "OK\r"},    {"ATSH\r", "13A200\r"}, {"ATSL\r", "40B0C1D2\r"},
        {"ATPL\r", "3\r"},  {"ATID\r", "3332\r"},   {"ATCH\r", "C\r"},
        {"ATMY\r", "1A\r"}, {"ATCT\r", "64\r"},     {"ATCN\r", "OK\r"}};
    for (const auto& [question, answer] : answers) ports_.line.Answer(question, answer);
  }

  EnvironmentFake fakes_;
  SerialPortsFake ports_{fakes_.clock};
  CKespCOMPort3 port_{fakes_.environment, ports_};
};

}  // namespace kesp
