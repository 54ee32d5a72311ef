// How a dialog behaves towards the client's windows, its messages and its end.
#include "client_window.h"
#include "dialog_fixture.h"
#include "support/environment_win.h"

namespace kesp {
namespace {

class DialogMannersTest : public ComDialogFixture {
 protected:
  // Tells the thread under test that its program is to end.
  static void EndProgram(const DialogUser& user, int exit_code) {
    PostThreadMessageW(GetWindowThreadProcessId(user.window(), nullptr), WM_QUIT,
                       static_cast<WPARAM>(exit_code), 0);
  }
  // The exit code with which the client's loop is told to end; -1 when it is not.
  static int TakeQuit() {
    MSG message{};
    return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) == FALSE
               ? -1
               : static_cast<int>(message.wParam);
  }
};

POINT Middle(const RECT& area) {
  return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

RECT WorkArea() {
  RECT area{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  return area;
}

void ExpectMiddle(HWND window, const RECT& area) {
  const POINT is = Middle(AreaOf(window));
  const POINT wanted = Middle(area);
  EXPECT_NEAR(is.x, wanted.x, 1);
  EXPECT_NEAR(is.y, wanted.y, 1);
}

void ExpectInside(HWND window, const RECT& area) {
  const RECT is = AreaOf(window);
  EXPECT_GE(is.left, area.left);
  EXPECT_GE(is.top, area.top);
  EXPECT_LE(is.right, area.right);
  EXPECT_LE(is.bottom, area.bottom);
}

TEST_F(DialogMannersTest, ClientsWindows_WaitUnderItAndAreAsTheyWereAfterwards) {
  const ClientWindow second;
  const ClientWindow off;
  EnableWindow(off.handle(), FALSE);
  const ClientWindow hidden;
  ShowWindow(hidden.handle(), SW_HIDE);
  const ClientWindow client({10, 10, 710, 510});
  HWND box = CreateWindowW(L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, client.handle(), nullptr,
                           nullptr, nullptr);
  SetFocus(box);
  Look([&](DialogUser& user) {
    EXPECT_EQ(GetWindow(user.window(), GW_OWNER), client.handle());
    ExpectMiddle(user.window(), AreaOf(client.handle()));
    EXPECT_FALSE(client.is_enabled());
    EXPECT_FALSE(second.is_enabled());
    EXPECT_FALSE(off.is_enabled());
    EXPECT_TRUE(hidden.is_enabled());
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
  });
  EXPECT_TRUE(client.is_enabled());
  EXPECT_TRUE(second.is_enabled());
  EXPECT_FALSE(off.is_enabled());
  EXPECT_TRUE(hidden.is_enabled());
  EXPECT_EQ(GetActiveWindow(), client.handle());
  EXPECT_EQ(GetFocus(), box);
}

TEST_F(DialogMannersTest, NoActiveWindow_TheForemostOneOwnsTheDialog) {
  const ClientWindow back;
  const ClientWindow front;
  SetActiveWindow(nullptr);
  ASSERT_EQ(GetActiveWindow(), nullptr);
  Look([&](DialogUser& user) { EXPECT_EQ(GetWindow(user.window(), GW_OWNER), front.handle()); });
  EXPECT_TRUE(front.is_enabled());
}

TEST_F(DialogMannersTest, NoOwner_OpensInTheMiddleOfTheScreen) {
  ASSERT_EQ(GetActiveWindow(), nullptr);
  EXPECT_TRUE(Show([](DialogUser& user) {
    EXPECT_EQ(GetWindow(user.window(), GW_OWNER), nullptr);
    ExpectMiddle(user.window(), WorkArea());
    EXPECT_EQ(user.Focus(), ID_ICBO_COM_PORT);
    user.Press(VK_RETURN);
  }));
}

TEST_F(DialogMannersTest, OwnerInACorner_HasItWithinTheScreen) {
  const RECT work = WorkArea();
  const RECT corners[] = {{work.left - 150, work.top - 100, work.left + 50, work.top + 20},
                          {work.right - 50, work.bottom - 40, work.right + 150, work.bottom + 100}};
  for (const RECT& corner : corners) {
    const ClientWindow client(corner);
    Look([&work](DialogUser& user) { ExpectInside(user.window(), work); });
  }
}

TEST_F(DialogMannersTest, Open_LetsTheClientsTimersTickAndItsWindowsPaint) {
  const ClientWindow client;
  client.StartTimer();
  Look([&client](DialogUser& /*user*/) {
    const int ticks = client.ticks;
    EXPECT_TRUE(WaitFor([&] { return client.ticks > ticks + 2; }));
    const int paints = client.paints;
    InvalidateRect(client.handle(), nullptr, TRUE);
    EXPECT_TRUE(WaitFor([&] { return client.paints > paints; }));
  });
}

TEST_F(DialogMannersTest, TestOfTheSwitch_ThePointerIsBusyOverTheDialogUntilItEnds) {
  EnvironmentFake& fakes = transport_.fakes;
  Environment environment{fakes.clock,    fakes.pump,  fakes.files,
                          fakes.settings, fakes.guids, SystemEnvironment().user};
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
  fakes.pump.OnPump([&] { during = pointers(); });
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

TEST_F(DialogMannersTest, ProgramToldToEnd_CancelsAndTellsTheClientsLoop) {
  const ClientWindow client;
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_REDIRECTOR);
    EndProgram(user, 7);
  }));
  EXPECT_EQ(TakeQuit(), 7);
  EXPECT_FALSE(port_.UseRedirector());
  EXPECT_TRUE(client.is_enabled());
}

TEST_F(DialogMannersTest, ProgramToldToEndInAnInnerDialog_EndsBoth) {
  transport_.ConnectModem();
  EXPECT_FALSE(Show([](DialogUser& user) {
    user.Click(ID_CHK_USE_RF_MODEM);
    user.Click(ID_CMD_RF_PROPERTIES);
    user.AnswerBox(L"Connect RF Modem", IDOK);
    user.In(kModemCaption, [](DialogUser& modem) { EndProgram(modem, 8); });
  }));
  EXPECT_EQ(TakeQuit(), 8);
}

// Also under a message box, which ends with it.
TEST_F(DialogMannersTest, OwnerDestroyed_Cancels) {
  for (const bool under_a_box : {false, true}) {
    if (under_a_box) ports_.codes.clear();
    ClientWindow client;
    client.on_act = [&client] { DestroyWindow(client.handle()); };
    EXPECT_FALSE(Show([&](DialogUser& user) {
      user.Click(under_a_box ? ID_OK : ID_CHK_USE_REDIRECTOR);
      EXPECT_TRUE(!under_a_box || WaitFor([&user] {
        return FindDialog(L"Invalid COM Port", GetWindowThreadProcessId(user.window(), nullptr)) != nullptr;
      }));
      Ask(client.handle(), ClientWindow::kAct);
    }));
    EXPECT_EQ(IsWindow(client.handle()), FALSE);
    EXPECT_FALSE(port_.UseRedirector());
  }
}

TEST_F(DialogMannersTest, AnotherDialogOpenedByATimer_WorksAndBothEnd) {
  NetworkOfFakes network;
  bool confirmed = false;
  ClientWindow client;
  client.on_tick = [&] {
    KillTimer(client.handle(), 1);
    confirmed = SystemTcpDialog().Show(network.tcp, {});
  };
  Look([&client](DialogUser& user) {
    client.StartTimer();
    user.In(kTcpCaption, [outer = user.window()](DialogUser& inner) {
      EXPECT_EQ(GetWindow(inner.window(), GW_OWNER), outer);
      EXPECT_EQ(IsWindowEnabled(outer), FALSE);
      inner.Type(L"192.168.0.10");
      inner.Press(VK_RETURN);
    });
    EXPECT_NE(IsWindowEnabled(user.window()), FALSE);
    EXPECT_FALSE(client.is_enabled());
  });
  EXPECT_TRUE(confirmed);
  EXPECT_EQ(network.tcp.IPAddress(), L"192.168.0.10");
  EXPECT_TRUE(client.is_enabled());
}

}  // namespace
}  // namespace kesp
