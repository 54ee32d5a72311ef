// The TCP/IP and the RS-232 dialog in turn, twice with Cancel and then twice with OK.
#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/calls.h"
#include "bench/text.h"
#include "dialogs/dialog_ids.h"
#include "tests/soak/bare_dialogs.h"
#include "tests/soak/part.h"
#include "tests/win/window_reading.h"

namespace kesp::soak {

using bench::CheckResult;
using Microsoft::WRL::ComPtr;

namespace {

constexpr UINT kLook = WM_APP;
constexpr UINT kDeadlineMs = 20000;
// Another program that comes to the front between the two halves of a click makes the button forget the
// first.
constexpr UINT_PTR kDeadline = 1;
constexpr UINT_PTR kPressAgain = 2;
constexpr UINT kPressAgainMs = 2000;

BOOL CALLBACK PrintBox(HWND window, LPARAM) {
  for (const std::wstring& text : ReadBox(window).texts) std::printf("  %ls\n", text.c_str());
  return TRUE;
}

// Whatever keeps the dialog open, Edit cannot be left otherwise.
void CALLBACK GiveUp(HWND, UINT, UINT_PTR, DWORD) {
  std::printf("a dialog has been open for %u s; on the screen:\n", kDeadlineMs / 1000);
  EnumThreadWindows(GetCurrentThreadId(), &PrintBox, 0);
  std::fflush(stdout);
  ExitProcess(1);
}

struct Press {
  const wchar_t* caption;
  int button;
  bool was_shown = false;
};

// Whether a lost block keeps a group of others from being given back, as under Wine 10.
bool KeepsBlocksInGroups() {
  ULONG kind = 0;
  constexpr ULONG kInGroups = 2;
  return HeapQueryInformation(GetProcessHeap(), HeapCompatibilityInformation, &kind, sizeof(kind), nullptr) !=
             FALSE &&
         kind == kInGroups;
}

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
  const bool again = message == WM_TIMER && first == kPressAgain;
  if (message != kLook && !again) return DefWindowProcW(window, message, first, second);
  auto& press = *reinterpret_cast<Press*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (again) std::printf("pressed once more: the first press had no effect\n");
  HWND dialog = FindWindowW(nullptr, press.caption);
  HWND button = GetDlgItem(dialog, press.button);
  press.was_shown = button != nullptr && IsWindowVisible(dialog) != FALSE;
  PostMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
  PostMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
  return 0;
}

// Presses a button of the dialog that is opened next on this thread. A message waits in the thread's queue
// for the dialog's loop, as a user's hand waits for the dialog.
class Hand {
 public:
  Hand()
      : window_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    if (window_ == nullptr) throw std::runtime_error("no window can be made; is there a screen?");
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OnMessage));
  }
  ~Hand() { DestroyWindow(window_); }
  Hand(const Hand&) = delete;
  Hand& operator=(const Hand&) = delete;

  template <class Transport>
  void Edit(Transport* transport, ::EEditCommFlags pages, const wchar_t* caption, bool confirms) {
    Press press{.caption = caption, .button = confirms ? ID_OK : ID_CANCEL};
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&press));
    SetTimer(window_, kDeadline, kDeadlineMs, &GiveUp);
    SetTimer(window_, kPressAgain, kPressAgainMs, nullptr);
    PostMessageW(window_, kLook, 0, 0);
    VARIANT_BOOL confirmed = VARIANT_FALSE;
    CheckResult(transport->Edit(pages, no_help_file_.get(), 0, &confirmed), "Edit");
    KillTimer(window_, kDeadline);
    KillTimer(window_, kPressAgain);
    if (!press.was_shown) throw std::runtime_error("the dialog did not come");
    if ((confirmed != VARIANT_FALSE) != confirms) throw std::runtime_error("Edit returned the opposite");
  }

 private:
  bench::Text no_help_file_{""};
  HWND window_;
};

class Dialogs : public Part {
 public:
  Dialogs() {
    CheckResult(bench::SelectTransport(comm_.Get(), ::csTCPIP).As(&tcp_), "the network transport");
    // A new object has neither, and OK wants both.
    CheckResult(tcp_->put_IPAddress(bench::Text("127.0.0.1").get()), "IPAddress");
    CheckResult(tcp_->put_Port(10001), "Port");
    CheckResult(bench::SelectTransport(comm_.Get(), ::csRS232).As(&port_), "the serial transport");
  }

  void Do(long number, long, long calls) override {
    if (number == 0) MeasureBare(calls);
    ++dialogs_;
    const bool confirms = number / 2 % 2 == 1;
    if (number % 2 == 0) {
      hand_.Edit(tcp_.Get(), ::ecfShowTCPExtendedTab, L"TCP/IP Communication Settings", confirms);
    } else {
      const auto pages = static_cast<::EEditCommFlags>(::ecfShowRS232ExtendedTab |
                                                       ::ecfShowRS232SmartSwitchTab | ::ecfShowRS232IRDongle);
      hand_.Edit(port_.Get(), pages, L"RS-232 Communication Settings", confirms);
    }
  }

  // Wine's common controls of version 6 lose memory with each label that has a font. As many bare dialogs
  // tell how much.
  Resources LostBySystem() const override {
    Resources lost;
    for (const ResourceKind& kind : kResourceKinds)
      lost.*kind.value = bare_lost_.*kind.value * dialogs_ / bare_dialogs_;
    if (in_groups_) AllowForGroups(lost);
    return lost;
  }

 private:
  // What is lost keeps groups of other blocks, and of those a dialog in use has more than a bare one: here
  // one group of 1.3 KB for each, where bare ones lost 0.4 of it.
  void AllowForGroups(Resources& lost) const {
    constexpr auto kBytesOfADialog = static_cast<std::int64_t>(512 * sizeof(void*));
    lost.system_blocks = std::max(lost.system_blocks, dialogs_ * 5 / 4);
    lost.system_bytes = std::max(lost.system_bytes, dialogs_ * kBytesOfADialog);
    lost.private_bytes = std::max(lost.private_bytes, 2 * dialogs_ * kBytesOfADialog);
  }

  // As many as in a tenth of the run.
  void MeasureBare(long calls) {
    constexpr long kFewest = 40;
    bare_dialogs_ = std::max(calls, kFewest);
    bare_lost_ = BareDialogs().LostBy(bare_dialogs_);
  }

  const bool in_groups_ = KeepsBlocksInGroups();
  std::int64_t dialogs_ = 0;
  long bare_dialogs_ = 1;
  Resources bare_lost_;
  ComPtr<::_CKespCommObj> comm_ = bench::CreateCommObj();
  ComPtr<::_CKespTCP> tcp_;
  ComPtr<::_CKespCOMPort3> port_;
  Hand hand_;
};

}  // namespace

std::unique_ptr<Part> MakeDialogs(const Surroundings&) {
  return std::make_unique<Dialogs>();
}

}  // namespace kesp::soak
