// What the dialogs look like - the system's font, its themed controls, pages without patches - and what they
// leave behind.
#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <map>

#include "client_window.h"
#include "dialog_fixture.h"
#include "dialogs/activation_context_win.h"
#include "dialogs/common_controls_win.h"
#include "message_hook.h"
#include "support/window_list_win.h"

namespace kesp {
namespace {

using DialogLooksTest = ComDialogFixture;

// How many pens, brushes, bitmaps and the like there are.
int CountDrawingObjects() {
  if (const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); count != 0) {
    return static_cast<int>(count);
  }
  // A system that does not count them has a limit: whatever does not fit any more is there already.
  constexpr int kMoreThanThereCanBe = 1 << 17;
  std::vector<HPEN> fitting;
  while (HPEN pen = CreatePen(PS_SOLID, 1, static_cast<COLORREF>(fitting.size()))) {
    fitting.push_back(pen);
    if (fitting.size() == kMoreThanThereCanBe) break;
  }
  for (HPEN pen : fitting) DeleteObject(pen);
  EXPECT_LT(fitting.size(), static_cast<std::size_t>(kMoreThanThereCanBe)) << "there is no limit";
  return kMoreThanThereCanBe - static_cast<int>(fitting.size());
}

LOGFONTW FontOf(HWND window) {
  LOGFONTW font{};
  GetObjectW(reinterpret_cast<HFONT>(Ask(window, WM_GETFONT)), sizeof(font), &font);
  return font;
}

LOGFONTW MessageFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
  return metrics.lfMessageFont;
}

COLORREF PixelAt(POINT place) {
  const HDC screen = GetDC(nullptr);
  const COLORREF color = GetPixel(screen, place.x, place.y);
  ReleaseDC(nullptr, screen);
  return color;
}

// Has the whole dialog painted by now.
void Repaint(DialogUser& user) {
  RedrawWindow(user.window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
  user.Settle();
}

// The file whose code the window runs.
std::wstring MakerOf(HWND window) {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(GetWindowLongPtrW(window, GWLP_WNDPROC)), &module);
  std::array<wchar_t, MAX_PATH> file{};
  GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
  return file.data();
}

TEST_F(DialogLooksTest, EveryControl_HasTheSystemsMessageFont) {
  const LOGFONTW message = MessageFont();
  Look([&message](DialogUser& user) {
    int seen = 0;
    for (HWND child : DescendantsOf(user.window())) {
      // Neither shows text.
      if (HasClass(child, UPDOWN_CLASSW) || HasClass(child, L"#32770")) continue;
      const LOGFONTW font = FontOf(child);
      EXPECT_STREQ(font.lfFaceName, message.lfFaceName) << GetDlgCtrlID(child);
      EXPECT_NEAR(std::abs(font.lfHeight), std::abs(message.lfHeight), 1) << GetDlgCtrlID(child);
      EXPECT_EQ(font.lfWeight, message.lfWeight);
      ++seen;
    }
    EXPECT_GT(seen, 33);
  });
}

HANDLE CurrentContext() {
  HANDLE context = nullptr;
  GetCurrentActCtx(&context);
  // Whoever activated it holds it; here it is only compared.
  if (context != nullptr) ReleaseActCtx(context);
  return context;
}

// Some systems give controls of version 6 to programs that do not ask for them; whether the library asks
// shows here.
TEST_F(DialogLooksTest, ActivationContext_HoldsWhileItLives) {
  const HANDLE before = CurrentContext();
  {
    const ActivationContext context;
    EXPECT_NE(CurrentContext(), before);
  }
  EXPECT_EQ(CurrentContext(), before);
}

TEST_F(DialogLooksTest, Controls_AreThoseOfVersion6) {
  Look([](DialogUser& user) {
    for (const int id : {ID_TAB_SETTINGS, ID_UD_TIMEOUT, ID_ICBO_COM_PORT}) {
      // Each version lies in a folder of its own, which has the version in its name.
      EXPECT_THAT(MakerOf(user.Control(id)), testing::HasSubstr(L"common-controls_6595b64144ccf1df_6.0."));
    }
  });
}

TEST_F(DialogLooksTest, LabelsAndBoxes_HaveTheBackgroundOfTheirPage) {
  Look([](DialogUser& user) {
    for (int tab = 0; tab < 3; ++tab) {
      user.ClickTab(tab);
      Repaint(user);
      int seen = 0;
      for (HWND child : DescendantsOf(user.window())) {
        const bool on_page = GetParent(child) != user.window();
        const LONG_PTR kind = GetWindowLongPtrW(child, GWL_STYLE) & BS_TYPEMASK;
        const bool check_box = HasClass(child, L"Button") && kind == BS_AUTOCHECKBOX;
        if (!on_page || IsWindowVisible(child) == FALSE || (!check_box && !HasClass(child, L"Static")))
          continue;
        const RECT area = AreaOf(child);
        // Its right edge, which no text reaches, and the page beside that.
        const COLORREF inside = PixelAt({area.right - 1, area.bottom - 1});
        const COLORREF beside = PixelAt({area.right - 1, area.bottom + 1});
        EXPECT_EQ(inside, beside) << "control " << GetDlgCtrlID(child) << " on page " << tab;
        ++seen;
      }
      EXPECT_GE(seen, 2);
    }
  });
}

TEST_F(DialogLooksTest, DisabledBoxesAndPages_HaveGroundsOfTheirOwn) {
  Look([](DialogUser& user) {
    const auto ground = [&user] {
      Repaint(user);
      const RECT area = AreaOf(user.Control(ID_TXT_INSTR_ADDRESS));
      // Near the right edge, which no text reaches.
      return PixelAt({area.right - 8, (area.top + area.bottom) / 2});
    };
    const COLORREF off = ground();
    const RECT page = AreaOf(GetParent(user.Control(ID_CHK_USE_RF_MODEM)));
    const RECT button = AreaOf(user.Control(ID_OK));
    const bool differs = PixelAt({page.right - 3, page.bottom - 3}) != PixelAt({button.left - 3, button.top});
    EXPECT_EQ(differs, IsAppThemed() != FALSE) << "a page under a theme is no part of the dialog's ground";
    user.Click(ID_CHK_USE_RF_MODEM);
    EXPECT_NE(off, ground());
  });
}

// A strip of the window's color, drawn on in memory: a small icon's height, with room for a text behind it.
class Strip {
 public:
  Strip() {
    SelectObject(device_, bitmap_);
    FillRect(device_, &area, GetSysColorBrush(COLOR_WINDOW));
  }
  ~Strip() {
    DeleteDC(device_);
    DeleteObject(bitmap_);
    ReleaseDC(nullptr, screen_);
  }
  Strip(const Strip&) = delete;
  Strip& operator=(const Strip&) = delete;

  HDC device() const { return device_; }

  // How much the two differ between those columns.
  int DifferenceTo(const Strip& other, LONG from, LONG to) const {
    int difference = 0;
    for (int y = 0; y < area.bottom; ++y) {
      for (int x = from; x < to; ++x) {
        const COLORREF mine = GetPixel(device_, x, y);
        const COLORREF its = GetPixel(other.device_, x, y);
        difference += std::abs(GetRValue(mine) - GetRValue(its)) +
                      std::abs(GetGValue(mine) - GetGValue(its)) + std::abs(GetBValue(mine) - GetBValue(its));
      }
    }
    return difference;
  }

  const RECT area{0, 0, 120, GetSystemMetrics(SM_CYSMICON)};

 private:
  HDC screen_ = GetDC(nullptr);
  HDC device_ = CreateCompatibleDC(screen_);
  HBITMAP bitmap_ = CreateCompatibleBitmap(screen_, area.right, area.bottom);
};

// Which icon stands at the strip's beginning; 0 for none.
int IconOn(const Strip& drawn) {
  const int size = GetSystemMetrics(SM_CXSMICON);
  std::map<int, int> icons;  // by how much they differ from what is drawn
  for (const int number : {0, ICON_COM_PORT, ICON_IR_PORT, ICON_6_PORT, ICON_8_PORT}) {
    const Strip expected;
    const auto icon = static_cast<HICON>(
        LoadImageW(ThisModule(), MAKEINTRESOURCEW(number), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    if (icon != nullptr) DrawIconEx(expected.device(), size / 8, 0, icon, size, size, 0, nullptr, DI_NORMAL);
    DestroyIcon(icon);
    icons[drawn.DifferenceTo(expected, 0, size + size / 8)] = number;
  }
  return icons.begin()->second;
}

TEST_F(DialogLooksTest, ListsWithImages_DrawEachEntryWithItsOwn) {
  const std::tuple<int, UINT, int> entries[] = {{ID_ICBO_COM_PORT, 0, ICON_COM_PORT},
                                                {ID_ICBO_COM_PORT, 2, ICON_COM_PORT},
                                                {ID_ICBO_COM_PORT, UINT(-1), 0},
                                                {ID_ICBO_SMART_SWITCH_STYLE, 0, ICON_6_PORT},
                                                {ID_ICBO_SMART_SWITCH_STYLE, 1, ICON_8_PORT}};
  Look([&entries](DialogUser& user) {
    for (const auto& [id, index, icon] : entries) {
      const Strip drawn;
      DRAWITEMSTRUCT item{};
      item.CtlType = ODT_COMBOBOX;
      item.itemID = index;
      item.hwndItem = user.Control(id);
      item.hDC = drawn.device();
      item.rcItem = drawn.area;
      Ask(GetParent(item.hwndItem), WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&item));
      EXPECT_EQ(IconOn(drawn), icon) << index;
      const Strip empty;
      const LONG text = GetSystemMetrics(SM_CXSMICON) * 3 / 2;
      EXPECT_EQ(drawn.DifferenceTo(empty, text, empty.area.right) > 0, icon != 0) << index;
    }
  });
}

TEST_F(DialogLooksTest, Columns_HaveOneEdgeEach) {
  Look([](DialogUser& user) {
    const auto place_of = [&user](int id) { return AreaOf(user.Control(id)); };
    for (const int id : {ID_CBO_BAUD_RATE, ID_CMD_RF_PROPERTIES, ID_TXT_INSTR_ADDRESS}) {
      // Places and sizes are rounded to pixels apart.
      EXPECT_NEAR(place_of(id).right, place_of(ID_ICBO_COM_PORT).right, 1) << id;
    }
    for (const int id : {ID_CBO_DATA_BITS, ID_CBO_STOP_BITS, ID_CBO_CONTROLLER_STYLE}) {
      EXPECT_EQ(place_of(id).left, place_of(ID_CBO_PARITY).left) << id;
    }
    EXPECT_NEAR(place_of(ID_CBO_CONTROLLER_STYLE).right, place_of(ID_CBO_MAX_BAUD_RATE).right, 1);
    EXPECT_EQ(place_of(ID_CHK_CREATE_LOG_FILE).left,
              AreaOf(GetWindow(user.Control(ID_TXT_TIMEOUT), GW_HWNDPREV)).left);
  });
}

TEST_F(DialogLooksTest, LabelsInOtherColours_AskForTheSystemsText) {
  Look([](DialogUser& user) {
    HWND label = user.Control(ID_LBL_BAUD_RATE);
    const HDC device = GetDC(label);
    SetTextColor(device, RGB(1, 2, 3));
    Ask(GetParent(label), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(device),
        reinterpret_cast<LPARAM>(label));
    EXPECT_EQ(GetTextColor(device), GetSysColor(COLOR_WINDOWTEXT));
    ReleaseDC(label, device);
  });
}

// The system tells the dialog, and only that.
TEST_F(DialogLooksTest, ColoursChange_PagesAndControlsAreToldToo) {
  std::map<HWND, int> told;
  const MessageHook hook([&told](const CWPRETSTRUCT& message) {
    if (message.message == WM_SYSCOLORCHANGE) ++told[message.hwnd];
  });
  Look([&told](DialogUser& user) {
    Ask(user.window(), WM_SYSCOLORCHANGE);
    user.Settle();
    for (HWND child : DescendantsOf(user.window())) EXPECT_GE(told[child], 1) << GetDlgCtrlID(child);
    EXPECT_EQ(told[user.Control(ID_TAB_SETTINGS)], 1);
  });
}

TEST_F(DialogLooksTest, ColoursOrThemeChange_APageIsPaintedAnew) {
  if (IsAppThemed() == FALSE) GTEST_SKIP() << "pages have the system's ground";
  Look([](DialogUser& user) {
    HWND page = GetParent(user.Control(ID_LBL_BAUD_RATE));
    const HDC device = GetDC(page);
    for (const UINT change : {WM_SYSCOLORCHANGE, WM_THEMECHANGED}) {
      const auto brush = reinterpret_cast<HGDIOBJ>(
          Ask(page, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(device), reinterpret_cast<LPARAM>(page)));
      EXPECT_EQ(GetObjectType(brush), DWORD{OBJ_BRUSH}) << change;
      Ask(page, change);
      EXPECT_EQ(GetObjectType(brush), 0U) << change;
    }
    ReleaseDC(page, device);
  });
}

class DialogLeavingsTest : public ComDialogFixture {
 protected:
  void OpenEach() {
    Look([](DialogUser& user) {
      for (const int tab : {2, 1, 0}) user.ClickTab(tab);
    });
    port_.SetUseRFModem(false);
    LookAtModem([](DialogUser& modem) { modem.Press(VK_ESCAPE); });
    const DialogUser user(kTcpCaption, [](DialogUser& dialog) {
      dialog.ClickTab(1);
      dialog.Press(VK_ESCAPE);
    });
    EXPECT_FALSE(SystemTcpDialog().Show(network_.tcp, {.show_extended_page = true}));
  }

  NetworkOfFakes network_;
};

TEST_F(DialogLeavingsTest, OpenedAndClosedOften_LeavesNoWindowsOrHandles) {
  constexpr int kTimes = 20;
  const ClientWindow client;
  // What the system keeps for good it has made by then.
  OpenEach();
  const std::size_t windows = WindowsOfThread().size();
  const DWORD user_objects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  const int drawing_objects = CountDrawingObjects();
  for (int times = 0; times < kTimes; ++times) OpenEach();
  EXPECT_EQ(WindowsOfThread().size(), windows);
  // Less than one of each kind for each time; the system's caches may grow by a few. A system that does not
  // count the first says 0 both times.
  EXPECT_LT(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), user_objects + kTimes);
  EXPECT_LT(CountDrawingObjects(), drawing_objects + kTimes);
}

}  // namespace
}  // namespace kesp
