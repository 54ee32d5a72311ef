// Reads the lists of actions of a personality file.
#include "simulator/action_reader.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <string_view>
#include <variant>

#include "simulator/json_fields.h"
#include "simulator/personality_error.h"
#include "simulator/turns_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kMilliseconds{0, 3'600'000};
constexpr Range kPieces{1, 1'000'000};
constexpr Range kRandomBytes{1, std::int64_t{64} * 1024 * 1024};
constexpr Range kRepeatedBytes{1, std::int64_t{1024} * 1024 * 1024};
constexpr Range kSeed{0, UINT32_MAX};

std::chrono::milliseconds Milliseconds(const JsonFields& fields, std::string_view field) {
  return std::chrono::milliseconds(fields.Whole(field, kMilliseconds));
}

std::string Ended(const JsonFields& fields, std::string_view field, const std::string& reply_terminator) {
  return fields.Text(field) + fields.TextOr("end", reply_terminator);
}

Action ReadSend(const JsonFields& fields, const std::string& reply_terminator) {
  fields.AllowOnly({"send", "end"});
  return Send{Ended(fields, "send", reply_terminator)};
}

Action ReadSendHex(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"send_hex"});
  return Send{fields.Hex("send_hex")};
}

Action ReadWait(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"wait_ms"});
  return Wait{Milliseconds(fields, "wait_ms")};
}

Action ReadSplit(const JsonFields& fields, const std::string& reply_terminator) {
  fields.AllowOnly({"split", "pieces", "gap_ms", "end"});
  return SendPieces{Ended(fields, "split", reply_terminator),
                    static_cast<std::size_t>(fields.Whole("pieces", kPieces)),
                    Milliseconds(fields, "gap_ms")};
}

Action ReadTrickle(const JsonFields& fields, const std::string& reply_terminator) {
  fields.AllowOnly({"trickle", "gap_ms", "end"});
  const std::string bytes = Ended(fields, "trickle", reply_terminator);
  return SendPieces{bytes, std::max<std::size_t>(1, bytes.size()), Milliseconds(fields, "gap_ms")};
}

Action ReadRandom(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"random", "seed"});
  std::mt19937 generator(static_cast<std::uint32_t>(fields.WholeOr("seed", kSeed, 1)));
  std::string bytes(static_cast<std::size_t>(fields.Whole("random", kRandomBytes)), '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator() & 0xFFU);
  return Send{bytes};
}

Action ReadRepeat(const JsonFields& fields, const std::string& reply_terminator) {
  fields.AllowOnly({"repeat", "bytes", "end"});
  const std::string pattern = fields.Text("repeat");
  if (pattern.empty()) throw PersonalityError(fields.PlaceOf("repeat"), "must not be empty");
  return SendRepeated{pattern, static_cast<std::size_t>(fields.Whole("bytes", kRepeatedBytes)),
                      fields.TextOr("end", reply_terminator)};
}

Action ReadFlood(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"flood_ms"});
  return Flood{Milliseconds(fields, "flood_ms")};
}

Action ReadClose(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"close"});
  fields.RequireTrue("close");
  return Ending::kClose;
}

Action ReadReset(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"reset"});
  fields.RequireTrue("reset");
  return Ending::kReset;
}

Action ReadEcho(const JsonFields& fields, const std::string& reply_terminator) {
  fields.AllowOnly({"echo", "end"});
  fields.RequireTrue("echo");
  return Echo{fields.TextOr("end", reply_terminator)};
}

Action ReadMergeNext(const JsonFields& fields, const std::string& /*reply_terminator*/) {
  fields.AllowOnly({"merge_next"});
  fields.RequireTrue("merge_next");
  return HoldForNext{};
}

struct Kind {
  std::string_view name;
  Action (*read)(const JsonFields& fields, const std::string& reply_terminator);
};

constexpr Kind kKinds[] = {
    {"send", ReadSend},     {"send_hex", ReadSendHex}, {"wait_ms", ReadWait},
    {"split", ReadSplit},   {"trickle", ReadTrickle},  {"random", ReadRandom},
    {"repeat", ReadRepeat}, {"flood_ms", ReadFlood},   {"close", ReadClose},
    {"reset", ReadReset},   {"echo", ReadEcho},        {"merge_next", ReadMergeNext},
};

// A reply that is held back has no pieces, no pauses and no end of its own, and must be of bounded length.
bool CanBeHeld(const Action& action) {
  return std::holds_alternative<Send>(action) || std::holds_alternative<Echo>(action) ||
         std::holds_alternative<HoldForNext>(action);
}

ActionList ReadList(const nlohmann::json& list, const std::string& place,
                    const std::string& reply_terminator) {
  ActionList actions;
  for (std::size_t i = 0; i < list.size(); ++i) {
    actions.push_back(ReadAction(list[i], place + "/" + std::to_string(i), reply_terminator));
  }
  const bool held = std::any_of(actions.begin(), actions.end(), [](const Action& action) {
    return std::holds_alternative<HoldForNext>(action);
  });
  if (held && !std::all_of(actions.begin(), actions.end(), CanBeHeld)) {
    throw PersonalityError(place, R"("merge_next" goes only with "send", "send_hex", "random" and "echo")");
  }
  return actions;
}

}  // namespace

Action ReadAction(const nlohmann::json& value, const std::string& place,
                  const std::string& reply_terminator) {
  const JsonFields fields(value, place);
  for (const Kind& kind : kKinds) {
    if (fields.Has(kind.name)) return kind.read(fields, reply_terminator);
  }
  std::string known;
  for (const Kind& kind : kKinds) known += (known.empty() ? "" : ", ") + std::string(kind.name);
  throw PersonalityError(place, "is not a known action (" + known + ")");
}

Answer ReadAnswer(const nlohmann::json& value, const std::string& place,
                  const std::string& reply_terminator) {
  Answer answer;
  answer.turns.clear();
  ReadTurns(value, place, [&](const nlohmann::json& list, const std::string& list_place) {
    answer.turns.push_back(ReadList(list, list_place, reply_terminator));
  });
  return answer;
}

}  // namespace kesp::simulator
