// Cuts the bytes that come in, in whatever pieces, into commands.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kesp::simulator {

// How many bytes without a terminator are kept before the client counts as out of its mind, 64 MiB.
inline constexpr std::size_t kCommandLimit = std::size_t{64} * 1024 * 1024;

// Collects the input of one client. The work grows with the bytes received, however small the pieces are.
class CommandFramer {
 public:
  // terminator is not empty.
  explicit CommandFramer(std::string_view terminator, std::size_t limit = kCommandLimit);

  void Add(std::string_view bytes);

  // The next whole command without its terminator, or nothing before more bytes come.
  std::optional<std::string> Next();

  // Whether the unfinished command is longer than the limit. Ask after Next had nothing.
  bool TooLong() const { return buffer_.size() - begin_ > limit_; }

 private:
  const std::string terminator_;
  const std::size_t limit_;
  std::string buffer_;
  std::size_t begin_ = 0;    // where the next command begins
  std::size_t scanned_ = 0;  // no terminator begins before this place
};

}  // namespace kesp::simulator
