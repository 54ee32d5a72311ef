// An instrument that answers as its personality says, as a device among others.
#include "simulator/played_device.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "simulator/bytes_text.h"
#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

bool NeedsOwnLine(const Answer& answer) {
  return std::any_of(answer.turns.begin(), answer.turns.end(), [](const ActionList& actions) {
    return std::any_of(actions.begin(), actions.end(), [](const Action& action) {
      return std::holds_alternative<Ending>(action) || std::holds_alternative<Flood>(action) ||
             std::holds_alternative<HoldForNext>(action);
    });
  });
}

Personality Checked(Personality personality, const std::string& place) {
  bool bad = NeedsOwnLine(personality.on_connect) || NeedsOwnLine(personality.unknown) ||
             NeedsOwnLine(personality.unknown_query);
  for (const auto* answers : {&personality.commands, &personality.prefixes}) {
    for (const auto& [name, answer] : *answers) bad = bad || NeedsOwnLine(answer);
  }
  if (bad) {
    throw PersonalityError(
        place, "must not close, reset, flood or merge_next: it has no line of its own to do it on");
  }
  return personality;
}

// One action as parts to send, each with the pause before it.
struct Part {
  std::chrono::milliseconds pause;
  std::string bytes;
};

struct PartsOf {
  const std::string& command;

  std::vector<Part> operator()(const Send& send) const { return {{{}, send.bytes}}; }
  std::vector<Part> operator()(const Echo& echo) const { return {{{}, command + echo.end}}; }
  std::vector<Part> operator()(const Wait& wait) const { return {{wait.length, {}}}; }

  std::vector<Part> operator()(const SendPieces& pieces) const {
    std::vector<Part> parts;
    const std::size_t length = pieces.bytes.size();
    const std::size_t count = std::max<std::size_t>(1, std::min(pieces.pieces, length));
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t begin = length * i / count;
      parts.push_back({i == 0 ? std::chrono::milliseconds(0) : pieces.gap,
                       pieces.bytes.substr(begin, length * (i + 1) / count - begin)});
    }
    return parts;
  }

  std::vector<Part> operator()(const SendRepeated& repeated) const {
    std::string bytes;
    while (bytes.size() < repeated.total) bytes += repeated.pattern;
    return {{{}, bytes.substr(0, repeated.total) + repeated.end}};
  }

  // Refused when the device was made.
  template <typename Refused>
  std::vector<Part> operator()(const Refused& /*action*/) const {
    return {};
  }
};

}  // namespace

PlayedDevice::PlayedDevice(Personality personality, const std::string& place)
    : instrument_(Checked(std::move(personality), place)), framer_(instrument_.terminator()) {}

Deeds PlayedDevice::Take(std::string_view bytes, Moment now) {
  Deeds deeds;
  framer_.Add(bytes);
  for (auto command = framer_.Next(); command; command = framer_.Next()) {
    deeds.events.push_back("command " + Quoted(*command, command->size()));
    Plan(instrument_.Command(*command), *command, now);
  }
  for (; !later_.empty() && later_.front().when <= now; later_.pop_front())
    deeds.bytes += later_.front().bytes;
  return deeds;
}

std::optional<Moment> PlayedDevice::Due() const {
  if (later_.empty()) return std::nullopt;
  return later_.front().when;
}

void PlayedDevice::Plan(const ActionList& actions, const std::string& command, Moment now) {
  free_ = std::max(free_, now);
  for (const Action& action : actions) {
    for (Part& part : std::visit(PartsOf{command}, action)) {
      free_ += part.pause;
      if (!part.bytes.empty()) later_.push_back({free_, std::move(part.bytes)});
    }
  }
}

}  // namespace kesp::simulator
