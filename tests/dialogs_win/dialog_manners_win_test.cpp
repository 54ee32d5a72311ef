// How a dialog behaves towards the client's windows, its messages and its end.
#include "client_window.h"
#include "dialog_stage.h"
#include "support/environment_win.h"

namespace kesp {
namespace {

class DialogMannersWinTest : public ComDialogStage {
 protected:
  // The exit code with which the client's loop is told to end; -1 when it is not.
  static int TakeQuit() {
    MSG message{};
    return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) == FALSE
               ? -1
               : static_cast<int>(message.wParam);
  }
};

RECT Place(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

POINT Middle(const RECT& area) {
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

RECT WorkArea() {
  RECT area{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  return area;
}

void ExpectMiddle(HWND window, const RECT& area) {
  const POINT is = Middle(Place(window));
  const POINT wanted = Middle(area);
  EXPECT_NEAR(is.x, wanted.x, 1);
  EXPECT_NEAR(is.y, wanted.y, 1);
}

void ExpectInside(HWND window, const RECT& area) {
  const RECT is = Place(window);
  EXPECT_GE(is.left, area.left);
  EXPECT_GE(is.top, area.top);
  EXPECT_LE(is.right, area.right);
  EXPECT_LE(is.bottom, area.bottom);
}

TEST_F(DialogMannersWinTest, ClientsWindows_WaitWhileItIsOpen) {
  const ClientWindow second;
  const ClientWindow off;
  EnableWindow(off.handle(), FALSE);
  const ClientWindow hidden;
  ShowWindow(hidden.handle(), SW_HIDE);
  const ClientWindow client;
  EXPECT_FALSE(Show([&](DialogUser& user) {
    EXPECT_EQ(GetWindow(user.window(), GW_OWNER), client.handle());
    EXPECT_FALSE(client.is_enabled());
    EXPECT_FALSE(second.is_enabled());
    EXPECT_FALSE(off.is_enabled());
    EXPECT_TRUE(hidden.is_enabled());
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    user.Press(VK_ESCAPE);
  }));
  EXPECT_TRUE(client.is_enabled());
  EXPECT_TRUE(second.is_enabled());
  EXPECT_FALSE(off.is_enabled());
  EXPECT_TRUE(hidden.is_enabled());
  EXPECT_EQ(GetActiveWindow(), client.handle());
}

TEST_F(DialogMannersWinTest, ClientsControlWithTheFocus_HasItAgain) {
  const ClientWindow client;
  HWND box = CreateWindowW(L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, client.handle(), nullptr,
                           nullptr, nullptr);
  SetFocus(box);
  EXPECT_FALSE(Show([](DialogUser& user) { user.Press(VK_ESCAPE); }));
  EXPECT_EQ(GetFocus(), box);
}

TEST_F(DialogMannersWinTest, NoActiveWindow_TheForemostOneOwnsTheDialog) {
  const ClientWindow back;
  const ClientWindow front;
  SetActiveWindow(nullptr);
  ASSERT_EQ(GetActiveWindow(), nullptr);
  EXPECT_FALSE(Show([&](DialogUser& user) {
    EXPECT_EQ(GetWindow(user.window(), GW_OWNER), front.handle());
    user.Press(VK_ESCAPE);
  }));
  EXPECT_TRUE(front.is_enabled());
}

TEST_F(DialogMannersWinTest, NoOwner_OpensInTheMiddleOfTheScreen) {
  ASSERT_EQ(GetActiveWindow(), nullptr);
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(GetWindow(user.window(), GW_OWNER), nullptr);
    ExpectMiddle(user.window(), WorkArea());
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
    user.Press(VK_RETURN);
  }));
}

TEST_F(DialogMannersWinTest, Owner_HasItOverItsMiddle) {
  const ClientWindow client({10, 10, 710, 510});
  EXPECT_FALSE(Show([&client](DialogUser& user) {
    ExpectMiddle(user.window(), Place(client.handle()));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(DialogMannersWinTest, OwnerInACorner_HasItWithinTheScreen) {
  const RECT work = WorkArea();
  const RECT corners[] = {{work.left - 150, work.top - 100, work.left + 50, work.top + 20},
                          {work.right - 50, work.bottom - 40, work.right + 150, work.bottom + 100}};
  for (const RECT& corner : corners) {
    const ClientWindow client(corner);
    EXPECT_FALSE(Show([&work](DialogUser& user) {
      ExpectInside(user.window(), work);
      user.Press(VK_ESCAPE);
    }));
  }
}

TEST_F(DialogMannersWinTest, Open_LetsTheClientsTimersTickAndItsWindowsPaint) {
  const ClientWindow client;
  client.StartTimer();
  EXPECT_FALSE(Show([&client](DialogUser& user) {
    const int ticks = client.ticks;
    EXPECT_TRUE(WaitFor([&] { return client.ticks > ticks + 2; }));
    const int paints = client.paints;
    InvalidateRect(client.handle(), nullptr, TRUE);
    EXPECT_TRUE(WaitFor([&] { return client.paints > paints; }));
    user.Press(VK_ESCAPE);
  }));
}

TEST_F(DialogMannersWinTest, TestOfTheSwitch_ThePointerIsBusyOverTheDialogUntilItEnds) {
  UserSurface& user_surface = SystemEnvironment().user;
  Environment environment{fakes_.clock,    fakes_.pump,  fakes_.files,
                          fakes_.settings, fakes_.guids, user_surface};
  CKespCOMPort3 port(environment, ports_);
  port.SetMaxBaudRate(EKespBaudRate3::br9600);
  port.SetBaudRate(EKespBaudRate3::br9600);
  port.SetUseSmartSwitch(true);
  std::vector<HWND> controls;
  // What the mouse shows when it moves over each of them.
  const auto pointers = [&controls] {
    std::vector<HCURSOR> shown;
    for (HWND control : controls) {
      Ask(control, WM_SETCURSOR, reinterpret_cast<WPARAM>(control), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
      shown.push_back(GetCursor());
    }
    return shown;
  };
  std::vector<HCURSOR> during;
  fakes_.pump.OnPump([&] { during = pointers(); });
  std::vector<HCURSOR> after;
  ClientWindow client;
  client.on_act = [&] { after = pointers(); };
  const DialogUser user(kComCaption, [&](DialogUser& it) {
    it.ClickTab(1);
    controls = {it.Control(ID_CHK_USE_SMART_SWITCH), it.Control(ID_TAB_SETTINGS)};
    it.Click(ID_CMD_TEST_SMART_SWITCH);
    Ask(client.handle(), ClientWindow::kAct);
    it.Press(VK_ESCAPE);
  });
  EXPECT_FALSE(SystemComPortDialog().Show(port, kEverything));
  const auto all = [](const wchar_t* name) { return std::vector<HCURSOR>(2, LoadCursorW(nullptr, name)); };
  EXPECT_EQ(during, all(reinterpret_cast<const wchar_t*>(IDC_WAIT)));
  EXPECT_EQ(after, all(reinterpret_cast<const wchar_t*>(IDC_ARROW)));
}

TEST_F(DialogMannersWinTest, ProgramToldToEnd_CancelsAndTellsTheClientsLoop) {
  const ClientWindow client;
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_REDIRECTOR);
    PostThreadMessageW(GetWindowThreadProcessId(user.window(), nullptr), WM_QUIT, 7, 0);
  }));
  EXPECT_EQ(TakeQuit(), 7);
  EXPECT_FALSE(port_.UseRedirector());
  EXPECT_TRUE(client.is_enabled());
}

TEST_F(DialogMannersWinTest, ProgramToldToEndInAnInnerDialog_EndsBoth) {
  ConnectModem();
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    EXPECT_TRUE(WaitFor([&user] {
      return FindDialog(kModemCaption, GetWindowThreadProcessId(user.window(), nullptr)) != nullptr;
    }));
    user.Settle();
    PostThreadMessageW(GetWindowThreadProcessId(user.window(), nullptr), WM_QUIT, 8, 0);
  }));
  EXPECT_EQ(TakeQuit(), 8);
}

TEST_F(DialogMannersWinTest, OwnerDestroyed_Cancels) {
  ClientWindow client;
  client.on_act = [&client] { DestroyWindow(client.handle()); };
  EXPECT_FALSE(Show([&client](DialogUser& user) {
    user.Click(ID_CHK_USE_REDIRECTOR);
    Ask(client.handle(), ClientWindow::kAct);
  }));
  EXPECT_EQ(IsWindow(client.handle()), FALSE);
  EXPECT_FALSE(port_.UseRedirector());
}

TEST_F(DialogMannersWinTest, OwnerDestroyedUnderAMessageBox_EndsBoth) {
  ports_.codes.clear();
  ClientWindow client;
  client.on_act = [&client] { DestroyWindow(client.handle()); };
  EXPECT_FALSE(Show([&client](DialogUser& user) {
    user.Click(ID_OK);
    EXPECT_TRUE(WaitFor([&user] {
      return FindDialog(L"Invalid COM Port", GetWindowThreadProcessId(user.window(), nullptr)) != nullptr;
    }));
    Ask(client.handle(), ClientWindow::kAct);
  }));
}

TEST_F(DialogMannersWinTest, AnotherDialogOpenedByATimer_WorksAndBothEnd) {
  CKespTCP tcp(
      fakes_.environment,
      [](SocketListener& listener) { return std::make_unique<SocketControlFake>(listener); }, MakeInstrument);
  tcp.SetPort(5025);
  bool confirmed = false;
  ClientWindow client;
  client.on_tick = [&] {
    KillTimer(client.handle(), 1);
    confirmed = SystemTcpDialog().Show(tcp, {});
  };
  EXPECT_FALSE(Show([&client](DialogUser& user) {
    client.StartTimer();
    user.In(kTcpCaption, [outer = user.window()](DialogUser& inner) {
      EXPECT_EQ(GetWindow(inner.window(), GW_OWNER), outer);
      EXPECT_EQ(IsWindowEnabled(outer), FALSE);
      inner.Type(L"192.168.0.10");
      inner.Press(VK_RETURN);
    });
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    EXPECT_FALSE(client.is_enabled());
    user.Press(VK_ESCAPE);
  }));
  EXPECT_TRUE(confirmed);
  EXPECT_EQ(tcp.IPAddress(), L"192.168.0.10");
  EXPECT_TRUE(client.is_enabled());
}

TEST_F(DialogMannersWinTest, MessageBox_BelongsToTheDialogWhichWaits) {
  ports_.codes.clear();
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_OK);
    const BoxContents box = user.AnswerBox(L"Invalid COM Port", IDOK);
    EXPECT_EQ(box.owner, user.window());
    EXPECT_FALSE(box.owner_enabled);
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    user.Press(VK_ESCAPE);
  }));
}

}  // namespace
}  // namespace kesp
