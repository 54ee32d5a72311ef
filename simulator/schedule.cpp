// Actions as bytes at their times.
#include "simulator/schedule.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;

// One action as parts.
struct PartsOfOne {
  std::string_view command;

  std::vector<Part> operator()(const Send& send) const { return {{{}, send.bytes}}; }
  std::vector<Part> operator()(const Echo& echo) const { return {{{}, std::string(command) + echo.end}}; }
  std::vector<Part> operator()(const Wait& wait) const { return {{wait.length, {}}}; }

  std::vector<Part> operator()(const SendPieces& pieces) const {
    std::vector<Part> parts;
    const std::size_t length = pieces.bytes.size();
    const std::size_t count = std::max<std::size_t>(1, std::min(pieces.pieces, length));
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t begin = length * i / count;
      parts.push_back({i == 0 ? milliseconds(0) : pieces.gap,
                       pieces.bytes.substr(begin, length * (i + 1) / count - begin), i + 1 == count});
    }
    return parts;
  }

  std::vector<Part> operator()(const SendRepeated& repeated) const {
    std::string bytes;
    while (bytes.size() < repeated.total) bytes += repeated.pattern;
    return {{{}, bytes.substr(0, repeated.total) + repeated.end}};
  }

  // Refused when the description was read.
  template <typename Refused>
  std::vector<Part> operator()(const Refused& /*action*/) const {
    return {};
  }
};

}  // namespace

std::vector<Part> PartsOf(const ActionList& actions, std::string_view command) {
  std::vector<Part> parts;
  milliseconds pause{0};
  for (const Action& action : actions) {
    for (Part& part : std::visit(PartsOfOne{command}, action)) {
      pause += part.pause;
      if (part.bytes.empty()) continue;
      part.pause = std::exchange(pause, milliseconds(0));
      parts.push_back(std::move(part));
    }
  }
  return parts;
}

}  // namespace kesp::simulator
