// Reads how a device answers discovery.
#include "simulator/discovery_reader.h"

#include <algorithm>
#include <string_view>
#include <variant>

#include "simulator/action_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kStorm{1, 1'000'000};
constexpr std::string_view kDatagrams[] = {"send", "send_hex", "random", "repeat"};

bool IsDatagram(const Entry& entry) {
  return std::any_of(std::begin(kDatagrams), std::end(kDatagrams),
                     [&entry](std::string_view name) { return entry.Member(name).has_value(); });
}

// What is a datagram by IsDatagram is one of two actions, or has members of two, which is noted already.
Datagram ReadDatagram(const Entry& entry) {
  const Action action = ReadAction(entry, AnswerForm{"", Place::kOwnLine});
  const auto* repeated = std::get_if<SendRepeated>(&action);
  const auto* sent = std::get_if<Send>(&action);
  if (repeated == nullptr && sent == nullptr) return {};
  const std::size_t length =
      repeated != nullptr ? repeated->total + repeated->end.size() : sent->bytes.size();
  if (length > kLongestDatagram) {
    entry.Wrong("makes a datagram of " + std::to_string(length) + " bytes; " +
                std::to_string(kLongestDatagram) + " is the most");
    return {};
  }
  if (repeated == nullptr) return Datagram{sent->bytes};
  std::string bytes;
  while (!repeated->pattern.empty() && bytes.size() < repeated->total) bytes += repeated->pattern;
  bytes.resize(repeated->total);
  return Datagram{bytes + repeated->end};
}

Storm ReadStorm(const Entry& entry) {
  Fields fields(entry);
  Storm storm;
  const Entry list = *fields.Need("storm");
  const std::vector<Entry> items = list.Items();
  if (items.empty()) list.Wrong("must be a list of one or more datagrams");
  for (const Entry& item : items) {
    if (IsDatagram(item)) {
      storm.datagrams.push_back(ReadDatagram(item));
    } else {
      item.Wrong("is not a datagram (send, send_hex, random, repeat)");
    }
  }
  if (const std::optional<Entry> count = fields.Need("datagrams"))
    storm.count = static_cast<std::size_t>(count->Whole(kStorm));
  fields.Finish();
  return storm;
}

DiscoveryAction ReadDiscoveryAction(const Entry& entry) {
  if (entry.Member("storm")) return ReadStorm(entry);
  if (IsDatagram(entry)) return ReadDatagram(entry);
  if (entry.Member("wait_ms")) return std::get<Wait>(ReadAction(entry, AnswerForm{"", Place::kOwnLine}));
  entry.Wrong("is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)");
  return Datagram{};
}

DiscoveryList ReadOne(const Entry& entry) {
  DiscoveryList actions;
  if (entry.Is(Value::Kind::kText)) return {Datagram{entry.Text()}};
  if (!entry.Is(Value::Kind::kList) && !entry.Is(Value::Kind::kNull))
    entry.Wrong("must be a text, null, a list of actions, or {\"cycle\": [...]} of these");
  for (const Entry& item : entry.Items()) actions.push_back(ReadDiscoveryAction(item));
  return actions;
}

}  // namespace

DiscoveryAnswer ReadDiscoveryAnswer(const Entry& entry) {
  DiscoveryAnswer answer;
  answer.turns.clear();
  ReadTurns(entry, [&answer](const Entry& turn) { answer.turns.push_back(ReadOne(turn)); });
  if (answer.turns.empty()) answer.turns.emplace_back();
  return answer;
}

}  // namespace kesp::simulator
