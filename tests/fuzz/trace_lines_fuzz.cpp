// The lines of a trace: in pieces as in one, and each of them whole.
#include <string>
#include <vector>

#include "console/trace_line.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp::console {
namespace {

struct Taken {
  std::vector<TraceLine> lines;

  void Next(TraceLines& trace) {
    while (std::optional<TraceLine> line = trace.Next()) lines.push_back(std::move(*line));
  }
  void Last(TraceLines& trace) {
    while (std::optional<TraceLine> line = trace.Last(TraceLines::Ending::kEnded))
      lines.push_back(std::move(*line));
  }
};

bool AreAlike(const std::vector<TraceLine>& some, const std::vector<TraceLine>& others) {
  if (some.size() != others.size()) return false;
  for (std::size_t i = 0; i < some.size(); ++i) {
    const bool alike = some[i].when == others[i].when && some[i].counter == others[i].counter &&
                       some[i].message == others[i].message && some[i].cut == others[i].cut;
    if (!alike) return false;
  }
  return true;
}

void Read(FuzzInput& input) {
  std::vector<std::size_t> cuts;
  for (std::size_t count = input.Below(16); count > 0; --count) cuts.push_back(input.Byte());
  const std::string_view trace = input.Rest();

  Taken whole;
  TraceLines at_once;
  at_once.Add(trace);
  whole.Next(at_once);
  whole.Last(at_once);

  Taken pieces;
  TraceLines in_pieces;
  std::string_view rest = trace;
  for (std::size_t i = 0; !rest.empty(); ++i) {
    const std::string_view piece = rest.substr(0, cuts.empty() ? 1 : cuts[i % cuts.size()] + 1);
    rest.remove_prefix(piece.size());
    in_pieces.Add(piece);
    pieces.Next(in_pieces);
  }
  pieces.Last(in_pieces);
  Require(AreAlike(whole.lines, pieces.lines), "the lines are the same however a trace comes");

  std::size_t length = 0;
  for (const TraceLine& line : whole.lines) {
    Require(!line.cut, "a short line is whole");
    Require(trace.find(line.when + "\t") != std::string_view::npos, "a line stands in the trace");
    Require(trace.find("\t" + line.message) != std::string_view::npos, "so does its message");
    length += line.when.size() + line.message.size();
  }
  Require(length <= trace.size(), "no byte is told twice");
}

}  // namespace
}  // namespace kesp::console

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::console::Read(input);
  return 0;
}
