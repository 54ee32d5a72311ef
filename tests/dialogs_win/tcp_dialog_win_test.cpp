// The TCP/IP dialog's window: what it shows, what typing and clicking in it does, and what it leaves behind.
#include "dialogs/tcp_dialog_win.h"

#include <gtest/gtest.h>

#include "dialog_user.h"
#include "dialogs/dialog_ids.h"
#include "network/counting_instrument_fake.h"
#include "network/kesp_tcp.h"
#include "network/socket_control_fake.h"
#include "support/environment_fake.h"

namespace kesp {
namespace {

constexpr wchar_t kCaption[] = L"TCP/IP Communication Settings";

class TcpDialogWinTest : public testing::Test {
 protected:
  bool Show(const DialogUser::Act& act, const TcpDialogOptions& options = {.show_extended_page = true}) {
    DialogUser user(kCaption, act);
    return SystemTcpDialog().Show(tcp_, options);
  }

  EnvironmentFake fakes_;
  CKespTCP tcp_{fakes_.environment,
                [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); },
                MakeInstrument};
};

TEST_F(TcpDialogWinTest, AddressTyped_DotsMoveOnAndOkWritesIt) {
  tcp_.SetPort(5025);
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(user.Focus(), ID_TXT_IP);
    user.Type(L"192.168.0.10");
    EXPECT_EQ(user.Text(ID_TXT_IP), L"192");
    EXPECT_EQ(user.Text(ID_TXT_IP + 3), L"10");
    user.Press(VK_RETURN);
  }));
  EXPECT_EQ(tcp_.IPAddress(), L"192.168.0.10");
}

}  // namespace
}  // namespace kesp
