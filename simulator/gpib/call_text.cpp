// A call as a line of text.
#include "simulator/gpib/call_text.h"

#include <cstdio>

#include "simulator/bytes_text.h"

namespace kesp::simulator::gpib {
namespace {

std::string Bytes(const std::string& bytes) {
  return simulator::Quoted(bytes, CallRecord::kMostBytes);
}

// So many of the arguments, separated by commas.
std::string Numbers(const Call& call, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ",") + std::to_string(call.arguments.at(i));
  return text;
}

std::string Arguments(const CallRecord::Line& line) {
  const std::string length = std::to_string(line.call.arguments[1]);
  switch (line.call.name) {
    case CallName::kDevice:
      return Numbers(line.call, 6);
    case CallName::kClear:
    case CallName::kSerialPoll:
      return Numbers(line.call, 1);
    case CallName::kEndOfString:
    case CallName::kOnline:
      return Numbers(line.call, 2);
    case CallName::kWrite:
      return Numbers(line.call, 1) + "," + Bytes(line.bytes) + "," + length;
    case CallName::kRead:
      break;
  }
  const std::string held =
      line.blanks > 0 ? "[" + std::to_string(line.blanks) + " blanks]" : "[" + Bytes(line.bytes) + "]";
  return Numbers(line.call, 1) + "," + held + "," + length;
}

std::string Reported(const Report& report) {
  char status[16];
  std::snprintf(status, sizeof status, "%04X", static_cast<unsigned>(report.outcome.status));
  return std::to_string(report.result) + " sta " + status + " err " + std::to_string(report.outcome.error) +
         " cnt " + std::to_string(report.outcome.count);
}

}  // namespace

std::string TextOf(const CallRecord::Line& line) {
  std::string text = std::to_string(line.thread) + " " + std::string(NameOf(line.call.name)) + "(" +
                     Arguments(line) + ") = " + Reported(line.report);
  if (!line.received.empty()) text += " " + Bytes(line.received);
  return text;
}

}  // namespace kesp::simulator::gpib
