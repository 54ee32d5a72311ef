// The lines of a trace.
#include "console/trace_line.h"

#include <charconv>
#include <system_error>

#include "console/regional_time.h"

namespace kesp::console {
namespace {

// The longest beginning of a line up to the message: longer dates are none.
constexpr std::size_t kLongestWhen = 64;
constexpr std::size_t kLongestBeginning = kLongestWhen + 13;

struct Beginning {
  std::string_view when;
  std::int32_t counter = 0;
  std::size_t length = 0;
};

std::optional<Beginning> BeginningOf(std::string_view text) {
  const std::string_view head = text.substr(0, kLongestBeginning);
  const std::size_t tab = head.find_first_of("\t\r\n");
  if (tab == std::string_view::npos || tab > kLongestWhen || head[tab] != '\t') return std::nullopt;
  Beginning beginning{.when = head.substr(0, tab)};
  const char* digits = head.data() + tab + 1;
  const char* end = head.data() + head.size();
  const auto [behind, error] = std::from_chars(digits, end, beginning.counter);
  if (error != std::errc() || behind == end || *behind != '\t') return std::nullopt;
  beginning.length = static_cast<std::size_t>(behind - head.data()) + 1;
  return beginning;
}

}  // namespace

std::uint32_t MillisecondsBetween(std::int32_t from, std::int32_t to) {
  return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

void TraceLines::Restart() {
  *this = TraceLines();
}

void TraceLines::Add(std::string_view bytes) {
  bytes_.erase(0, begin_);
  searched_ -= begin_;
  begin_ = 0;
  if (searched_ > kLongestMessage) {
    bytes_.erase(kLongestMessage, searched_ - kLongestMessage);
    searched_ = kLongestMessage;
    cut_ = true;
  }
  if (candidate_) candidate_ = searched_;
  bytes_ += bytes;
}

TraceLines::Finding TraceLines::LineAt(std::size_t place) {
  const std::string_view text = std::string_view(bytes_).substr(place);
  const std::optional<Beginning> beginning = BeginningOf(text);
  if (!beginning) {
    const std::string_view head = text.substr(0, kLongestBeginning);
    const bool may_grow =
        !ended_ && head.size() < kLongestBeginning && head.find('\n') == std::string_view::npos;
    return may_grow ? Finding::kTooShort : Finding::kNoLine;
  }
  if (beginning->when == last_when_) return Finding::kLine;
  if (!ReadRegionalTime(beginning->when)) return Finding::kNoLine;
  last_when_ = beginning->when;
  return Finding::kLine;
}

std::optional<TraceLine> TraceLines::Take(std::size_t end) {
  const std::string_view text = std::string_view(bytes_).substr(begin_, end - begin_);
  const std::optional<Beginning> beginning = BeginningOf(text);
  begin_ = end;
  if (!beginning) return std::nullopt;
  std::string_view message = text.substr(beginning->length);
  if (message.ends_with("\r\n")) message.remove_suffix(2);
  TraceLine line{.when = std::string(beginning->when),
                 .counter = beginning->counter,
                 .message = std::string(message),
                 .cut = cut_};
  cut_ = false;
  return line;
}

std::optional<TraceLine> TraceLines::Next() {
  while (true) {
    if (!candidate_) {
      const std::size_t line_end = bytes_.find('\n', searched_);
      searched_ = line_end == std::string::npos ? bytes_.size() : line_end + 1;
      if (line_end == std::string::npos) return std::nullopt;
      candidate_ = searched_;
    }
    const Finding finding = LineAt(*candidate_);
    if (finding == Finding::kTooShort) return std::nullopt;
    candidate_.reset();
    if (finding == Finding::kLine && begun_) return Take(searched_);
    if (finding == Finding::kLine || !begun_) begin_ = searched_;
    begun_ = begun_ || finding == Finding::kLine;
  }
}

std::optional<TraceLine> TraceLines::Last(Ending ending) {
  ended_ = ended_ || ending == Ending::kEnded;
  if (std::optional<TraceLine> line = Next()) return line;
  const bool is_whole = ended_ || std::string_view(bytes_).ends_with("\r\n");
  if (!begun_ || !is_whole) return std::nullopt;
  std::optional<TraceLine> line = Take(bytes_.size());
  bytes_.clear();
  begin_ = searched_ = 0;
  candidate_ = 0;
  begun_ = false;
  return line;
}

}  // namespace kesp::console
