// "kesp download": a long transfer at a COM port.
#include <algorithm>
#include <cstdio>

#include "console/commands.h"
#include "console/failure_text.h"
#include "console/hint.h"
#include "console/instrument_at.h"
#include "console/part_file.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

// How far a transfer is: "12345 bytes, 960 bytes/s, 12.9 s". The silence at its end does not count.
class Progress {
 public:
  explicit Progress(Clock& clock) : clock_(clock), start_(clock.Now()) {}

  void Note(std::int64_t received) {
    if (received == received_) return;
    received_ = received;
    duration_ = clock_.Now() - start_;
  }
  std::string Text() const {
    const double seconds = std::chrono::duration<double>(duration_).count();
    char text[96];
    std::snprintf(text, sizeof text, "%lld bytes, %.0f bytes/s, %.1f s", static_cast<long long>(received_),
                  static_cast<double>(received_) / std::max(seconds, 0.001), seconds);
    return text;
  }

 private:
  Clock& clock_;
  std::chrono::microseconds start_;
  std::chrono::microseconds duration_{};
  std::int64_t received_ = 0;
};

}  // namespace

int Run(const DownloadOptions& options, Surroundings& around) {
  Console& console = around.console;
  const Address address = ParseAddress(options.talk.address);
  if (!std::holds_alternative<ComAddress>(address) && !std::holds_alternative<UsbAddress>(address)) {
    throw UsageError(
        "a long transfer comes from a COM port only; elsewhere \"kesp query --binary\" reads bytes");
  }
  const auto instrument = InstrumentAt(options.talk, around);
  PartFile file(options.file);
  Progress progress(around.clock);
  const Transfer transfer = instrument->Download(options.command, [&](std::int64_t received) {
    progress.Note(received);
    console.ShowProgress(progress.Text());
    return !console.Interrupted();
  });
  console.ShowProgress("");
  if (transfer.failure) {
    const std::string hint = HintFor(*transfer.failure, address);
    console.WriteError("kesp: " + FailureText(*transfer.failure) + "\n  " + file.KeepAndTell(transfer.bytes) +
                       "\n" + (hint.empty() ? "" : "  " + hint + "\n"));
    return kExitFailed;
  }
  // It may have been pressed when the last look was over.
  if (transfer.aborted || console.Interrupted()) {
    console.WriteError("kesp: ended by Ctrl-C; " + file.KeepAndTell(transfer.bytes) + "\n");
    return kExitInterrupted;
  }
  file.Complete(transfer.bytes);
  console.Write(options.file + ": " + progress.Text() + "\n");
  return kExitDone;
}

}  // namespace kesp::console
