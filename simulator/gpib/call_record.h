// The record of calls: what was asked of the driver, and what came of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <variant>

#include "simulator/gpib/call.h"
#include "simulator/gpib/failure_plan.h"

namespace kesp::simulator::gpib {

// Keeps the last lines, and makes text of them only when asked, because keeping the record must cost little.
class CallRecord {
 public:
  static constexpr std::size_t kMostLines = 10'000;
  // Of more bytes than these only the first are shown, and "...".
  static constexpr std::size_t kMostBytes = 4096;

  // A record that is off stays empty.
  explicit CallRecord(bool is_on) : is_on_(is_on) {}

  // Takes down a call as it comes in, to be added when it has ended.
  struct Line {
    unsigned thread = 0;
    Call call{};
    // What was to be written; of a read what the buffer held on entry, or how many blanks.
    std::string bytes;
    std::size_t blanks = 0;
    Report report;
    std::string received;
  };
  Line Begin(unsigned thread, const Call& call) const;
  // Bytes that a read has put into the buffer are at the place of those in the call.
  void Add(Line line, const Report& report, std::string_view received);

  // A line of another kind, for what is not a call of the bus.
  void Add(std::string text);

  // All lines, each with a line feed.
  std::string Text() const;

 private:
  void Push(std::variant<std::string, Line> line);

  const bool is_on_;
  std::deque<std::variant<std::string, Line>> lines_;
};

}  // namespace kesp::simulator::gpib
