// A message that waits in the thread's queue while the dialog is made is the first that the dialog delivers.
#include "bench/dialog_opening.h"

#include <windows.h>

#include <stdexcept>
#include <vector>

#include "bench/measure.h"

namespace kesp::bench {

namespace {

constexpr UINT kInput = WM_APP;
constexpr int kSamples = 11;

// When the message came, and whether the dialog stood there by then.
struct Arrival {
  double time = 0;
  bool is_shown = false;
};

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message != kInput) return DefWindowProcW(window, message, first, second);
  auto& arrival = *reinterpret_cast<Arrival*>(second);
  arrival.time = MicrosecondsNow();
  HWND dialog = FindWindowW(nullptr, L"RS-232 Communication Settings");
  arrival.is_shown = dialog != nullptr && IsWindowVisible(dialog) != FALSE;
  if (dialog != nullptr) PostMessageW(dialog, WM_CLOSE, 0, 0);
  return 0;
}

class MessageTarget {
 public:
  MessageTarget()
      : window_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    if (window_ == nullptr) throw std::runtime_error("no window can be made; is there a screen?");
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&OnMessage));
  }
  ~MessageTarget() { DestroyWindow(window_); }
  MessageTarget(const MessageTarget&) = delete;
  MessageTarget& operator=(const MessageTarget&) = delete;

  void Post(Arrival& arrival) { PostMessageW(window_, kInput, 0, reinterpret_cast<LPARAM>(&arrival)); }

 private:
  HWND window_;
};

double OpenOnce(const SerialClient& client, MessageTarget& target) {
  Arrival arrival;
  target.Post(arrival);
  const double start = MicrosecondsNow();
  const bool confirmed = client.Edit();
  if (!arrival.is_shown || confirmed) throw std::runtime_error("the dialog did not come");
  return arrival.time - start;
}

}  // namespace

DialogOpening MeasureDialogOpening(const SerialClient& client) {
  MessageTarget target;
  const double first = OpenOnce(client, target);
  std::vector<double> times;
  for (int i = 0; i < kSamples; ++i) times.push_back(OpenOnce(client, target));
  return {.first_in_process = first, .later = Median(times)};
}

}  // namespace kesp::bench
