// Reads a trace, which may grow meanwhile, line by line.
#include "console/trace_reader.h"

#include <cstddef>
#include <optional>

namespace kesp::console {
namespace {

constexpr std::size_t kPiece = 1U << 20U;

// Date, counter and message of the first line or two: no two traces have the same.
constexpr std::size_t kLongestMark = 256;

}  // namespace

bool TraceReader::IsReplaced() {
  if (place_ == 0) return false;
  const std::optional<std::uint64_t> size = file_.Size();
  // Between the old file and the new one there may be none.
  if (!size) return false;
  return *size < place_ || file_.Read(0, beginning_.size()) != beginning_;
}

TraceReader::Outcome TraceReader::Read(const OnLine& on_line) {
  if (IsReplaced()) {
    lines_.Restart();
    place_ = 0;
    beginning_.clear();
    return Outcome::kReplaced;
  }
  if (!file_.Size()) return Outcome::kEnd;
  const std::string piece = file_.Read(place_, kPiece);
  if (piece.empty()) return Outcome::kEnd;
  if (place_ == beginning_.size() && beginning_.size() < kLongestMark)
    beginning_ += piece.substr(0, kLongestMark);
  place_ += piece.size();
  lines_.Add(piece);
  while (const std::optional<TraceLine> line = lines_.Next()) {
    has_lines_ = true;
    on_line(*line);
  }
  return Outcome::kMore;
}

void TraceReader::HandOutLast(TraceLines::Ending ending, const OnLine& on_line) {
  while (const std::optional<TraceLine> line = lines_.Last(ending)) {
    has_lines_ = true;
    on_line(*line);
  }
}

}  // namespace kesp::console
