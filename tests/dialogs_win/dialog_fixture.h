// What the tests of the dialogs' windows share: the dialogs over their transports, and somebody at the
// screen.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "dialog_user.h"
#include "dialogs/com_port_dialog_win.h"
#include "dialogs/dialog_ids.h"
#include "dialogs/tcp_dialog_win.h"
#include "fake_transports.h"
#include "support/lines_fixture.h"

namespace kesp {

using Numbers = std::vector<int>;
// The selected part of a text box.
using Range = std::pair<DWORD, DWORD>;

inline constexpr wchar_t kTcpCaption[] = L"TCP/IP Communication Settings";
inline constexpr wchar_t kComCaption[] = L"RS-232 Communication Settings";
inline constexpr wchar_t kModemCaption[] = L"RF Modem Properties";

// Expects a box with that text, that icon of the system's (IDI_ASTERISK, IDI_HAND) and nothing but an OK
// button.
inline void ExpectBox(const BoxContents& box, const wchar_t* icon, const std::wstring& text) {
  EXPECT_EQ(box.texts, Lines{text});
  EXPECT_EQ(box.buttons, Lines{L"OK"});
  EXPECT_EQ(box.icon, LoadIconW(nullptr, icon));
}

inline void ExpectEnabled(const DialogUser& user, const Numbers& ids, bool enabled) {
  for (const int id : ids) EXPECT_EQ(user.IsEnabled(id), enabled) << id;
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

// Expects that order of the Tab key, and the opposite one with Shift.
inline void ExpectTabOrder(DialogUser& user, const Numbers& order) {
  EXPECT_EQ(TabOrder(user), order);
  Numbers back = order;
  std::reverse(back.begin() + 1, back.end());
  EXPECT_EQ(TabOrder(user, true), back);
}

class TcpDialogFixture : public testing::Test {
 protected:
  static constexpr TcpDialogOptions kEverything{.show_extended_page = true};

  // Whether it was confirmed.
  bool Show(const DialogUser::Act& act, const TcpDialogOptions& options = kEverything) {
    const DialogUser user(kTcpCaption, act);
    return SystemTcpDialog().Show(tcp_, options);
  }
  // The same with the Escape key behind it.
  void Look(const DialogUser::Act& act) {
    EXPECT_FALSE(Show([&act](DialogUser& user) {
      act(user);
      user.Press(VK_ESCAPE);
    }));
  }

  NetworkOfFakes network_;
  CKespTCP& tcp_ = network_.tcp;
};

class ComDialogFixture : public testing::Test {
 protected:
  static constexpr ComPortDialogOptions kEverything{
      .show_extended_page = true, .show_smart_switch_page = true, .show_ir_dongle = true};

  // Whether it was confirmed.
  bool Show(const DialogUser::Act& act, const ComPortDialogOptions& options = kEverything) {
    const DialogUser user(kComCaption, act);
    return SystemComPortDialog().Show(port_, options);
  }
  // The same with the Escape key behind it.
  void Look(const DialogUser::Act& act, const ComPortDialogOptions& options = kEverything) {
    EXPECT_FALSE(Show(
        [&act](DialogUser& user) {
          act(user);
          user.Press(VK_ESCAPE);
        },
        options));
  }
  // Opens the radio modem's dialog and does that in it, which must end it.
  void LookAtModem(const DialogUser::Act& act) {
    transport_.ConnectModem();
    Look([&act](DialogUser& user) {
      user.Click(ID_CHK_USE_RF_MODEM);
      user.Click(ID_CMD_RF_PROPERTIES);
      user.AnswerBox(L"Connect RF Modem", IDOK);
      user.In(kModemCaption, act);
      EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
      EXPECT_EQ(user.Focus(), ID_CMD_RF_PROPERTIES);
    });
  }

  PortsOfFakes transport_;
  SerialPortsFake& ports_ = transport_.ports;
  CKespCOMPort3& port_ = transport_.port;
};

}  // namespace kesp
