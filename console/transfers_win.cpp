// Download, told piece by piece by its event.
#include "console/transfers_win.h"

#include "console/box_catcher_win.h"
#include "console/com_calls_win.h"
#include "console/event_sink_win.h"
#include "console/received_bytes_win.h"

namespace kesp::console {
namespace {

constexpr DISPID kDownloadUpdate = 2;

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
  Transfer transfer;
  const OpenedPort opened(port);
  if (!cmd.empty()) Send(port, cmd, omega);
  const EventConnection events(port, __uuidof(__CKespCOMPort3), [&](DISPID event, EventArguments arguments) {
    if (event != kDownloadUpdate || on_transfer(arguments.Number(0))) return;
    transfer.aborted = true;
    arguments.SetTrue(1);
  });
  // A port that fails in the middle is told in a box.
  const BoxCatcher boxes;
  ComText text;
  VARIANT_BOOL complete = VARIANT_FALSE;
  const HRESULT result = port->Download(text.out(), &complete);
  events.Rethrow();
  Check(result);
  transfer.bytes = ReceivedBytes({text.get(), SysStringLen(text.get())});
  transfer.failure = boxes.caught();
  if (transfer.failure && transfer.bytes.empty()) throw LibraryError(*transfer.failure);
  return transfer;
}

}  // namespace kesp::console
