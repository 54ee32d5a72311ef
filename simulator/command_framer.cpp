// Cuts the bytes that come in, in whatever pieces, into commands.
#include "simulator/command_framer.h"

#include <algorithm>

namespace kesp::simulator {

CommandFramer::CommandFramer(std::string_view terminator, std::size_t limit)
    : terminator_(terminator), limit_(limit) {}

void CommandFramer::Add(std::string_view bytes) {
  // The finished commands are dropped here and not in Next, so that a thousand commands in one piece move the
  // rest of the buffer once and not a thousand times.
  buffer_.erase(0, begin_);
  scanned_ -= begin_;
  begin_ = 0;
  buffer_ += bytes;
}

std::optional<std::string> CommandFramer::Next() {
  const std::size_t end = buffer_.find(terminator_, scanned_);
  if (end == std::string::npos) {
    // All but the last byte of a terminator may be there already.
    const std::size_t sure = buffer_.size() - std::min(buffer_.size(), terminator_.size() - 1);
    scanned_ = std::max(begin_, sure);
    return std::nullopt;
  }
  std::string command = buffer_.substr(begin_, end - begin_);
  begin_ = end + terminator_.size();
  scanned_ = begin_;
  return command;
}

}  // namespace kesp::simulator
