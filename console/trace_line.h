// The lines of a trace: date and time, TAB, the millisecond counter, TAB, the message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesp::console {

struct TraceLine {
  std::string when;          // in the system's regional form
  std::int32_t counter = 0;  // milliseconds; runs over from the highest number to the lowest
  std::string message;       // bytes in the system's ANSI code page; may hold line ends
  bool cut = false;          // the message was longer than kLongestMessage
};

// What is kept of one message.
inline constexpr std::size_t kLongestMessage = 4U << 20U;

// From one reading of the counter to a later one, within 49 days.
std::uint32_t MillisecondsBetween(std::int32_t from, std::int32_t to);

// Takes a trace in pieces and hands out its lines. A line that the end of a reply has broken is joined again:
// what does not begin with date, time and counter belongs to the line before. What stands in front of the
// first line is dropped.
class TraceLines {
 public:
  void Add(std::string_view bytes);
  // The next line of which the end is known, that is, behind which another begins.
  std::optional<TraceLine> Next();
  // What is left, as the last line; nothing where its line end is missing, unless the file is at its end.
  enum class Ending { kMayGrow, kEnded };
  std::optional<TraceLine> Last(Ending ending);
  // Forgets all that was added.
  void Restart();

 private:
  enum class Finding { kLine, kNoLine, kTooShort };
  Finding LineAt(std::size_t place);
  std::optional<TraceLine> Take(std::size_t end);

  std::string bytes_;
  std::size_t begin_ = 0;                     // of the line that is being gathered
  std::size_t searched_ = 0;                  // up to here all places are known where a line begins
  std::optional<std::size_t> candidate_ = 0;  // behind a line end: perhaps the beginning of the next line
  bool begun_ = false;                        // whether a line is being gathered
  bool cut_ = false;
  bool ended_ = false;
  std::string last_when_;
};

}  // namespace kesp::console
