// The record of calls: what was asked of the driver, and what came of it.
#include "simulator/gpib/call_record.h"

#include <utility>

#include "simulator/gpib/call_text.h"

namespace kesp::simulator::gpib {
namespace {

// One more than is shown, which tells that there are more.
std::string Excerpt(std::string_view bytes) {
  return std::string(bytes.substr(0, CallRecord::kMostBytes + 1));
}

}  // namespace

CallRecord::Line CallRecord::Begin(unsigned thread, const Call& call) const {
  Line line;
  if (!is_on_) return line;
  line.thread = thread;
  line.call = call;
  const bool is_blank =
      call.name == CallName::kRead && call.bytes.find_first_not_of(' ') == std::string_view::npos;
  if (is_blank)
    line.blanks = call.bytes.size();
  else
    line.bytes = Excerpt(call.bytes);
  // The caller may have done away with them when the line is read.
  line.call.bytes = {};
  return line;
}

void CallRecord::Add(Line line, const Report& report, std::string_view received) {
  if (!is_on_) return;
  line.report = report;
  line.received = Excerpt(received);
  Push(std::move(line));
}

void CallRecord::Add(std::string text) {
  if (is_on_) Push(std::move(text));
}

std::string CallRecord::Text() const {
  std::string text;
  for (const auto& line : lines_) {
    const auto* call = std::get_if<Line>(&line);
    text += (call != nullptr ? TextOf(*call) : std::get<std::string>(line)) + "\n";
  }
  return text;
}

void CallRecord::Push(std::variant<std::string, Line> line) {
  if (lines_.size() == kMostLines) lines_.pop_front();
  lines_.push_back(std::move(line));
}

}  // namespace kesp::simulator::gpib
