// Reads what is done in answer to a command.
#include "simulator/action_reader.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string_view>
#include <variant>

namespace kesp::simulator {
namespace {

constexpr Range kMilliseconds{0, 3'600'000};
constexpr Range kPieces{1, 1'000'000};
constexpr Range kRandomBytes{1, std::int64_t{64} * 1024 * 1024};
constexpr Range kRepeatedBytes{1, std::int64_t{1024} * 1024 * 1024};
constexpr Range kSeed{0, UINT32_MAX};
constexpr Range kStatusByte{0, 255};

// The members of an action. Its name is one of them, so it is there.
class ActionFields : public Fields {
 public:
  ActionFields(const Entry& entry, const AnswerForm& form) : Fields(entry), form_(form) {}

  std::string Text(std::string_view name) { return Need(name)->Text(); }
  std::int64_t Number(std::string_view name, Range range) {
    const std::optional<Entry> found = Need(name);
    return found ? found->Whole(range) : range.least;
  }
  std::chrono::milliseconds Milliseconds(std::string_view name) {
    return std::chrono::milliseconds(Number(name, kMilliseconds));
  }
  std::string End() { return TextOr("end", form_.reply_terminator); }
  void RequireTrue(std::string_view name) { Need(name)->RequireTrue(); }
  // Whether there is a meaning to the action is a matter of where the device is.
  void RequireOwnLine() const {
    if (form_.place != Place::kOwnLine)
      entry().Wrong("needs a line of the device's own, which it has not behind another one or on a bus");
  }
  void RequireNothingBefore() const {
    if (form_.place == Place::kBehindAnother) entry().Wrong("would end the line of the device before it");
  }
  void RequireBus() const {
    if (form_.place != Place::kBus)
      entry().Wrong("goes with \"gpib\" only, since nothing else polls status bytes");
  }

 private:
  const AnswerForm& form_;
};

Action ReadSend(ActionFields& fields) {
  const std::string text = fields.Text("send");
  return Send{text + fields.End()};
}

Action ReadSendHex(ActionFields& fields) {
  return Send{fields.Need("send_hex")->Hex()};
}

Action ReadWait(ActionFields& fields) {
  return Wait{fields.Milliseconds("wait_ms")};
}

Action ReadSplit(ActionFields& fields) {
  const std::string text = fields.Text("split");
  return SendPieces{text + fields.End(), static_cast<std::size_t>(fields.Number("pieces", kPieces)),
                    fields.Milliseconds("gap_ms")};
}

Action ReadTrickle(ActionFields& fields) {
  const std::string bytes = fields.Text("trickle") + fields.End();
  return SendPieces{bytes, std::max<std::size_t>(1, bytes.size()), fields.Milliseconds("gap_ms")};
}

Action ReadRandom(ActionFields& fields) {
  std::mt19937 generator(static_cast<std::uint32_t>(fields.WholeOr("seed", kSeed, 1)));
  std::string bytes(static_cast<std::size_t>(fields.Number("random", kRandomBytes)), '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator() & 0xFFU);
  return Send{bytes};
}

Action ReadRepeat(ActionFields& fields) {
  const std::string pattern = fields.Text("repeat");
  if (pattern.empty()) fields.Need("repeat")->Wrong("must not be empty");
  return SendRepeated{pattern, static_cast<std::size_t>(fields.Number("bytes", kRepeatedBytes)),
                      fields.End()};
}

Action ReadFlood(ActionFields& fields) {
  fields.RequireOwnLine();
  return Flood{fields.Milliseconds("flood_ms")};
}

Action ReadStatusByte(ActionFields& fields) {
  fields.RequireBus();
  return SetStatusByte{static_cast<std::uint8_t>(fields.Number("status_byte", kStatusByte))};
}

Action ReadClose(ActionFields& fields) {
  fields.RequireNothingBefore();
  fields.RequireTrue("close");
  return Ending::kClose;
}

Action ReadReset(ActionFields& fields) {
  fields.RequireNothingBefore();
  fields.RequireTrue("reset");
  return Ending::kReset;
}

Action ReadEcho(ActionFields& fields) {
  fields.RequireTrue("echo");
  return Echo{fields.End()};
}

Action ReadMergeNext(ActionFields& fields) {
  fields.RequireOwnLine();
  fields.RequireTrue("merge_next");
  return HoldForNext{};
}

struct Kind {
  std::string_view name;
  Action (*read)(ActionFields& fields);
};

constexpr Kind kKinds[] = {
    {"send", ReadSend},
    {"send_hex", ReadSendHex},
    {"wait_ms", ReadWait},
    {"split", ReadSplit},
    {"trickle", ReadTrickle},
    {"random", ReadRandom},
    {"repeat", ReadRepeat},
    {"flood_ms", ReadFlood},
    {"close", ReadClose},
    {"reset", ReadReset},
    {"echo", ReadEcho},
    {"merge_next", ReadMergeNext},
    {"status_byte", ReadStatusByte},
};

// A reply that is held back has no pieces, no pauses and no end of its own, and must be of bounded length.
bool CanBeHeld(const Action& action) {
  return std::holds_alternative<Send>(action) || std::holds_alternative<Echo>(action) ||
         std::holds_alternative<HoldForNext>(action);
}

ActionList ReadList(const Entry& entry, const AnswerForm& form) {
  ActionList actions;
  for (const Entry& item : entry.Items()) actions.push_back(ReadAction(item, form));
  const bool held = std::any_of(actions.begin(), actions.end(), [](const Action& action) {
    return std::holds_alternative<HoldForNext>(action);
  });
  if (held && !std::all_of(actions.begin(), actions.end(), CanBeHeld))
    entry.Wrong(R"("merge_next" goes only with "send", "send_hex", "random" and "echo")");
  return actions;
}

ActionList ReadOne(const Entry& entry, const AnswerForm& form) {
  if (entry.Is(Value::Kind::kText)) return {Send{entry.Text() + form.reply_terminator}};
  if (entry.Is(Value::Kind::kList)) return ReadList(entry, form);
  if (!entry.Is(Value::Kind::kNull))
    entry.Wrong("must be a text, null, a list of actions, or {\"cycle\": [...]} of these");
  return {};
}

}  // namespace

Action ReadAction(const Entry& entry, const AnswerForm& form) {
  if (entry.Is(Value::Kind::kText)) {
    entry.Wrong("must be an action, such as {\"send\": \"...\"}; texts in turn are {\"cycle\": [...]}");
    return Send{};
  }
  ActionFields fields(entry, form);
  std::string known;
  for (const Kind& kind : kKinds) {
    if (fields.Has(kind.name)) {
      const Action action = kind.read(fields);
      fields.Finish();
      return action;
    }
    known += (known.empty() ? "" : ", ") + std::string(kind.name);
  }
  if (entry.Is(Value::Kind::kObject)) entry.Wrong("is not a known action (" + known + ")");
  return Send{};
}

void ReadTurns(const Entry& entry, const std::function<void(const Entry&)>& read_one) {
  if (!entry.Is(Value::Kind::kObject)) return read_one(entry);
  Fields fields(entry);
  if (const std::optional<Entry> cycle = fields.Need("cycle")) {
    const std::vector<Entry> turns = cycle->Items();
    if (turns.empty()) cycle->Wrong("must be a list of one or more answers");
    for (const Entry& turn : turns) read_one(turn);
  }
  fields.Finish();
}

Answer ReadAnswer(const Entry& entry, const AnswerForm& form) {
  Answer answer;
  answer.turns.clear();
  ReadTurns(entry, [&](const Entry& turn) { answer.turns.push_back(ReadOne(turn, form)); });
  if (answer.turns.empty()) answer.turns.emplace_back();
  return answer;
}

}  // namespace kesp::simulator
