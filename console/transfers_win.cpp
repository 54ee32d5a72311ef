// Download, told piece by piece by its event.
#include "console/transfers_win.h"

#include "console/box_catcher_win.h"
#include "console/com_calls_win.h"
#include "console/event_sink_win.h"
#include "console/received_bytes_win.h"
#include "console/regular_looks_win.h"
#include "console/transfer_outcome.h"

namespace kesp::console {
namespace {

constexpr DISPID kDownloadUpdate = 2;
// For so long the library gathers before it raises that event, and a bit more.
constexpr ULONGLONG kLongestPartMs = 700;

// Closes the port at the end, however that comes.
class OpenedPort {
 public:
  explicit OpenedPort(_CKespCOMPort3* port) : port_(port) {
    VARIANT_BOOL opened = VARIANT_FALSE;
    Check(port_->OpenPort(&opened));
  }
  ~OpenedPort() { port_->ClosePort(); }
  OpenedPort(const OpenedPort&) = delete;
  OpenedPort& operator=(const OpenedPort&) = delete;

 private:
  _CKespCOMPort3* port_;
};

void Send(_CKespCOMPort3* port, const std::string& cmd, const std::string& omega) {
  VARIANT_BOOL sent = VARIANT_FALSE;
  Check(port->WriteLine(ComText(cmd).get(), ComText(omega).get(), nullptr, VARIANT_FALSE, &sent));
}

}  // namespace

Transfer DownloadFrom(_CKespCOMPort3* port, const std::string& cmd, const std::string& omega,
                      const OnTransfer& on_transfer) {
  const OpenedPort opened(port);
  if (!cmd.empty()) Send(port, cmd, omega);
  std::int64_t received = 0;
  bool aborted = false;
  const EventConnection events(port, __uuidof(__CKespCOMPort3), [&](DISPID event, EventArguments arguments) {
    if (event != kDownloadUpdate) return;
    received = arguments.Number(0);
    if (aborted || !on_transfer(received)) aborted = true, arguments.SetTrue(1);
  });
  // What comes is told at the end of its part, and the part is kept then. Silence raises no event: it is
  // ended by closing the port.
  ULONGLONG aborted_at = 0;
  const RegularLooks looks([&] {
    if (aborted_at == 0 && on_transfer(received)) return;
    aborted = true;
    if (aborted_at == 0) aborted_at = GetTickCount64();
    if (GetTickCount64() - aborted_at > kLongestPartMs) port->ClosePort();
  });
  // A port that fails in the middle is told in a box.
  const BoxCatcher boxes;
  ComText text;
  VARIANT_BOOL complete = VARIANT_FALSE;
  const HRESULT result = port->Download(text.out(), &complete);
  events.Rethrow();
  if (!aborted) Check(result);
  return TransferOf(ReceivedBytes({text.get(), SysStringLen(text.get())}), aborted, boxes.caught(),
                    complete != VARIANT_FALSE);
}

}  // namespace kesp::console
