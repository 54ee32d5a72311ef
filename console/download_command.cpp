// "kesp download": a long transfer at a COM port.
#include <algorithm>
#include <cstdio>

#include "console/commands.h"
#include "console/failure_text.h"
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

// Keeps what came of a transfer that did not reach its end, and tells so.
std::string Kept(PartFile& file, const std::string& bytes) {
  if (bytes.empty()) return "nothing had come";
  return "the " + std::to_string(bytes.size()) + " bytes that had come are in " + file.Keep(bytes);
}

}  // namespace

int Run(const DownloadOptions& options, Surroundings& around) {
  Console& console = around.console;
  const Address address = ParseAddress(options.talk.address);
  if (!std::holds_alternative<ComAddress>(address) && !std::holds_alternative<UsbAddress>(address))
    throw UsageError(
        "a long transfer comes from a COM port only; elsewhere \"kesp query --binary\" reads bytes");
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
    console.WriteError("kesp: " + FailureText(*transfer.failure) + "\n  " + Kept(file, transfer.bytes) +
                       "\n");
    return kExitFailed;
  }
  if (transfer.aborted) {
    console.WriteError("kesp: ended by Ctrl-C; " + Kept(file, transfer.bytes) + "\n");
    return kExitInterrupted;
  }
  file.Complete(transfer.bytes);
  console.Write(options.file + ": " + progress.Text() + "\n");
  return kExitDone;
}

}  // namespace kesp::console
