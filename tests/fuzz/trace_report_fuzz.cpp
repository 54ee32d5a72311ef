// "kesp log" on any trace: the exchanges and their forms, the times, and the device that is made of them,
// which the simulator must take.
#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

#include "console/device_from_trace.h"
#include "console/exchange_text.h"
#include "console/exchanges.h"
#include "console/file_pieces.h"
#include "console/since_filter.h"
#include "console/trace_reader.h"
#include "console/usage_error.h"
#include "console/utf8_character.h"
#include "simulator/description.h"
#include "simulator/description_error.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::console {
namespace {

constexpr LocalSeconds kNow = 1'763'820'309;

// A trace that grows, and is replaced by another one.
class FileFake final : public FilePieces {
 public:
  std::optional<std::uint64_t> Size() override { return content.size(); }
  std::string Read(std::uint64_t place, std::size_t most) override {
    return place < content.size() ? content.substr(static_cast<std::size_t>(place), most) : std::string();
  }
  std::string content;
};

void RequireReport(const Exchange& exchange) {
  Require(!exchange.is_whole || exchange.received.has_value(), "a whole reply is one");
  for (const int width : {0, 20, 80}) {
    const std::string line = TableLine(exchange, width);
    Require(line.find('\n') == line.size() - 1, "an exchange is one line");
    Require(width == 0 || CharactersIn(line) <= static_cast<std::size_t>(width), "no wider than the console");
  }
  Require(CsvLine(exchange).ends_with("\r\n"), "a line of values has its end");
}

class Reading {
 public:
  explicit Reading(FileFake& file, const std::string& since) : file_(file), reader_(file) {
    if (since.empty()) return;
    try {
      since_.emplace(since, file_, kNow);
    } catch (const UsageError&) {
      // No time.
    } catch (const std::runtime_error&) {
      // No dates that can be read.
    }
  }

  void ReadOn() {
    while (reader_.Read(on_line_) != TraceReader::Outcome::kEnd) {
    }
    reader_.HandOutLast(TraceLines::Ending::kMayGrow, on_line_);
    exchanges_.Pause();
  }

  void End() {
    reader_.HandOutLast(TraceLines::Ending::kEnded, on_line_);
    exchanges_.End();
    MakeDevice();
  }

 private:
  void MakeDevice() {
    DeviceFromTrace::Made made;
    try {
      made = device_.Make();
    } catch (const std::runtime_error& error) {
      Require(std::string(error.what()).find("so nothing was written") != std::string::npos ||
                  std::string(error.what()).find("omega-controller") != std::string::npos,
              "without an exchange there is no device");
      return;
    }
    try {
      simulator::ReadDescription(made.json, "made");
    } catch (const simulator::DescriptionError& error) {
      std::fprintf(stderr, "%s\n%s\n", made.json.c_str(), error.what());
      Require(false, "the simulator takes the device that was made");
    }
  }

  FileFake& file_;
  TraceReader reader_;
  std::optional<SinceFilter> since_;
  DeviceFromTrace device_;
  Exchanges exchanges_{[this](const Exchange& exchange) {
    if (since_) since_->Includes(exchange);
    RequireReport(exchange);
    device_.Add(exchange);
  }};
  TraceReader::OnLine on_line_ = [this](const TraceLine& line) { exchanges_.Add(line); };
};

// So that the bytes go into what the lines say: "~" begins a line of the trace.
std::string TraceOf(std::string_view bytes) {
  std::string trace;
  int counter = 100;
  for (const char byte : bytes) {
    if (byte == '~') {
      if (!trace.empty()) trace += "\r\n";
      trace += "22/11/2026 14:05:09\t" + std::to_string(counter += 7) + "\t";
    } else {
      trace += byte;
    }
  }
  return trace + "\r\n";
}

void Report(FuzzInput& input) {
  const std::uint8_t kind = input.Byte();
  const std::string since((kind & 1) != 0 ? input.Bytes(input.Below(20)) : "");
  const std::size_t cut = input.Word();
  const std::string trace = TraceOf(input.Rest());
  FileFake file;
  file.content = trace.substr(0, cut % (trace.size() + 1));
  Reading reading(file, since);
  reading.ReadOn();
  file.content = (kind & 2) != 0 ? trace : trace.substr(trace.size() / 2);
  reading.ReadOn();
  reading.End();
}

}  // namespace
}  // namespace kesp::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::console::Report(input);
  return 0;
}
