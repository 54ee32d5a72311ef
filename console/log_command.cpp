// "kesp log": a trace made readable, or made a device.
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "console/commands.h"
#include "console/device_from_trace.h"
#include "console/exchange_text.h"
#include "console/exchanges.h"
#include "console/new_file.h"
#include "console/since_filter.h"
#include "console/trace_reader.h"
#include "console/usage_error.h"
#include "console/utf8_path.h"

namespace kesp::console {
namespace {

using std::chrono::milliseconds;

// How often a file that is followed is looked at.
constexpr milliseconds kLookEvery{250};

// Shorter files are read before anybody looks.
constexpr std::uint64_t kLongFile = 8U << 20U;

// What becomes of the exchanges: a text, or a device.
class Report {
 public:
  Report(const LogOptions& options, Console& console) : options_(options), console_(console) {}

  void Begin() {
    if (options_.as_device.empty()) text_ = options_.csv ? CsvHead() : TableHead(console_.Width());
  }

  void Add(const Exchange& exchange) {
    if (options_.errors && !exchange.has_failed) return;
    if (!options_.as_device.empty()) return device_.Add(exchange);
    text_ += options_.csv ? CsvLine(exchange) : TableLine(exchange, console_.Width());
  }

  void Write() {
    if (text_.empty()) return;
    console_.ShowProgress("");
    console_.Write(text_);
    text_.clear();
  }

  void End() {
    Write();
    if (options_.as_device.empty()) return;
    const DeviceFromTrace::Made made = device_.Make();
    WriteNewFile(options_.as_device, made.json);
    console_.Write(options_.as_device + ": " + made.summary + "\n");
    for (const std::string& remark : made.remarks) console_.WriteError("kesp: " + remark + "\n");
  }

 private:
  const LogOptions& options_;
  Console& console_;
  std::string text_;
  DeviceFromTrace device_;
};

// From the file to the report.
class Reading {
 public:
  Reading(const LogOptions& options, Surroundings& around)
      : options_(options),
        around_(around),
        file_(options.file),
        reader_(file_),
        report_(options, around.console) {}

  int Run() {
    const std::optional<std::uint64_t> size = Await();
    if (!size && options_.follow) return kExitDone;
    if (!size) throw std::runtime_error(options_.file + " is not there");
    if (!options_.since.empty()) SetSince();
    report_.Begin();
    if (!ReadToEnd(*size)) return kExitInterrupted;
    const bool is_followed = options_.follow && Follow();
    End();
    if (!reader_.HasLines() && !is_followed && *size > 0) {
      throw std::runtime_error(options_.file + " holds no line of a trace of the library");
    }
    report_.End();
    return kExitDone;
  }

 private:
  // The size of the file; with --follow, when it is there. Nothing where there is none.
  std::optional<std::uint64_t> Await() {
    std::error_code ignored;
    if (std::filesystem::is_directory(PathOf(options_.file), ignored))
      throw std::runtime_error(options_.file + " is a folder");
    std::optional<std::uint64_t> size = file_.Size();
    if (size || !options_.follow) return size;
    around_.console.WriteError("kesp: " + options_.file + " is not there yet; waiting for it\n");
    for (; !size && !around_.console.Interrupted(); size = file_.Size()) around_.clock.Sleep(kLookEvery);
    return size;
  }

  void SetSince() {
    const LocalSeconds now = ReadIsoTime(around_.clock.LocalTime()).value_or(0);
    since_.emplace(options_.since, file_, now);
    if (!since_->doubt().empty()) around_.console.WriteError("kesp: " + since_->doubt() + "\n");
  }

  // False after Ctrl-C. What is appended meanwhile is left for --follow.
  bool ReadToEnd(std::uint64_t size) {
    while (reader_.Place() < size) {
      if (around_.console.Interrupted()) return options_.follow;
      if (reader_.Read(on_line_) == TraceReader::Outcome::kEnd) break;
      report_.Write();
      if (size < kLongFile) continue;
      around_.console.ShowProgress("reading " + options_.file + ": " +
                                   std::to_string(reader_.Place() * 100 / size) + " %");
    }
    around_.console.ShowProgress("");
    return true;
  }

  // Until Ctrl-C.
  bool Follow() {
    while (!around_.console.Interrupted()) {
      const TraceReader::Outcome outcome = reader_.Read(on_line_);
      if (outcome == TraceReader::Outcome::kReplaced) {
        exchanges_.End();
        report_.Write();
        around_.console.WriteError("kesp: " + options_.file +
                                   " was cut or is another file now; from its beginning:\n");
        continue;
      }
      if (outcome == TraceReader::Outcome::kEnd) {
        reader_.HandOutLast(TraceLines::Ending::kMayGrow, on_line_);
        exchanges_.Pause();
        report_.Write();
        around_.clock.Sleep(kLookEvery);
      }
      report_.Write();
    }
    return true;
  }

  void End() {
    reader_.HandOutLast(TraceLines::Ending::kEnded, on_line_);
    exchanges_.End();
  }

  const LogOptions& options_;
  Surroundings& around_;
  FileOnDisk file_;
  TraceReader reader_;
  Report report_;
  std::optional<SinceFilter> since_;
  Exchanges exchanges_{[this](const Exchange& exchange) {
    if (!since_ || since_->Includes(exchange)) report_.Add(exchange);
  }};
  TraceReader::OnLine on_line_ = [this](const TraceLine& line) { exchanges_.Add(line); };
};

}  // namespace

int Run(const LogOptions& options, Surroundings& around) {
  if (!options.as_device.empty()) {
    if (options.errors || options.csv) throw UsageError("--as-device goes with neither --errors nor --csv");
    RequireNewFile(options.as_device);
  }
  return Reading(options, around).Run();
}

}  // namespace kesp::console
