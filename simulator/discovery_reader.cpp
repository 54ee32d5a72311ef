// Reads how a personality answers discovery.
#include "simulator/discovery_reader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>
#include <variant>

#include "simulator/action_reader.h"
#include "simulator/json_fields.h"
#include "simulator/personality_error.h"
#include "simulator/turns_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kStorm{1, 1'000'000};
constexpr std::string_view kDatagrams[] = {"send", "send_hex", "random", "repeat"};

bool IsDatagram(const JsonFields& fields) {
  return std::any_of(std::begin(kDatagrams), std::end(kDatagrams),
                     [&fields](std::string_view name) { return fields.Has(name); });
}

void CheckLength(std::size_t length, const std::string& place) {
  if (length <= kLongestDatagram) return;
  throw PersonalityError(place, "makes a datagram of " + std::to_string(length) + " bytes; " +
                                    std::to_string(kLongestDatagram) + " is the most");
}

Datagram AsDatagram(const SendRepeated& repeated, const std::string& place) {
  CheckLength(repeated.total + repeated.end.size(), place);
  std::string bytes;
  while (bytes.size() < repeated.total) bytes += repeated.pattern;
  bytes.resize(repeated.total);
  return Datagram{bytes + repeated.end};
}

// What is a datagram by IsDatagram is one of two actions, or is refused.
Datagram ReadDatagram(const nlohmann::json& value, const std::string& place) {
  const Action action = ReadAction(value, place, "");
  if (const auto* repeated = std::get_if<SendRepeated>(&action)) return AsDatagram(*repeated, place);
  const auto& send = std::get<Send>(action);
  CheckLength(send.bytes.size(), place);
  return Datagram{send.bytes};
}

Storm ReadStorm(const JsonFields& fields) {
  fields.AllowOnly({"storm", "datagrams"});
  const nlohmann::json& list = fields.Value("storm");
  const std::string place = fields.PlaceOf("storm");
  if (!list.is_array() || list.empty())
    throw PersonalityError(place, "must be a list of one or more datagrams");
  Storm storm;
  for (std::size_t i = 0; i < list.size(); ++i) {
    const std::string item_place = place + "/" + std::to_string(i);
    if (!IsDatagram(JsonFields(list[i], item_place)))
      throw PersonalityError(item_place, "is not a datagram (send, send_hex, random, repeat)");
    storm.datagrams.push_back(ReadDatagram(list[i], item_place));
  }
  storm.count = static_cast<std::size_t>(fields.Whole("datagrams", kStorm));
  return storm;
}

DiscoveryAction ReadDiscoveryAction(const nlohmann::json& value, const std::string& place) {
  const JsonFields fields(value, place);
  if (fields.Has("storm")) return ReadStorm(fields);
  if (IsDatagram(fields)) return ReadDatagram(value, place);
  if (fields.Has("wait_ms")) return std::get<Wait>(ReadAction(value, place, ""));
  throw PersonalityError(place,
                         "is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)");
}

}  // namespace

DiscoveryAnswer ReadDiscoveryAnswer(const nlohmann::json& value, const std::string& place) {
  DiscoveryAnswer answer;
  answer.turns.clear();
  ReadTurns(value, place, [&answer](const nlohmann::json& list, const std::string& list_place) {
    DiscoveryList actions;
    for (std::size_t i = 0; i < list.size(); ++i)
      actions.push_back(ReadDiscoveryAction(list[i], list_place + "/" + std::to_string(i)));
    answer.turns.push_back(std::move(actions));
  });
  return answer;
}

}  // namespace kesp::simulator
