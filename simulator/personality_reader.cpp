// Reads an instrument: which answers it gives to which commands.
#include "simulator/personality_reader.h"

#include "simulator/discovery_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kBaud{50, 4'000'000};
constexpr Range kDataBits{5, 8};
constexpr Range kStopBits{1, 2};
constexpr Range kPrimary{0, 30};
constexpr Range kSecondary{0, 126};
constexpr Range kDelayMs{0, 3'600'000};

gpib::Address ReadAddress(const Entry& entry) {
  Fields fields(entry);
  gpib::Address address;
  if (const std::optional<Entry> primary = fields.Need("primary"))
    address.primary = static_cast<std::int32_t>(primary->Whole(kPrimary));
  if (const std::optional<Entry> secondary = fields.Find("secondary")) {
    address.secondary = static_cast<std::int32_t>(secondary->Whole(kSecondary));
    if (!address.IsValid()) secondary->Wrong("must be 0 for none, 1 to 30, or 96 to 126");
  }
  fields.Finish();
  return address;
}

void ReadCommands(const Entry& entry, const AnswerForm& form, Personality& personality) {
  const std::string& terminator = personality.terminator;
  const Fields must_be_an_object(entry);
  for (auto [name, member] : entry.Members()) {
    if (!terminator.empty() && name.find(terminator) != std::string::npos)
      member.Wrong("holds the terminator, so that it can never be received");
    const bool is_prefix = !name.empty() && name.back() == '*';
    if (is_prefix) name.pop_back();
    (is_prefix ? personality.prefixes : personality.commands)[name] = ReadAnswer(member, form);
  }
}

std::optional<unsigned> Number(Fields& fields, std::string_view name, Range range) {
  const std::optional<std::int64_t> number = fields.Whole(name, range);
  if (!number) return std::nullopt;
  return static_cast<unsigned>(*number);
}

void RefuseThoseOfABus(Fields& fields) {
  for (const char* name : {"end", "delay_ms", "keeps_replies"}) {
    if (const std::optional<Entry> member = fields.Find(name)) member->Wrong("goes with \"gpib\" only");
  }
}

}  // namespace

LineRule ReadLineRule(const Entry& entry) {
  Fields fields(entry);
  LineRule rule;
  if (const std::optional<Entry> baud = fields.Need("baud"))
    rule.baud = static_cast<unsigned>(baud->Whole(kBaud));
  if (const std::optional<Entry> parity = fields.Find("parity")) {
    const std::string name = parity->Text();
    if (name.size() == 1 && std::string("NEOMS").find(name) != std::string::npos) {
      rule.parity = name.front();
    } else {
      parity->Wrong("must be N, E, O, M or S");
    }
  }
  rule.data_bits = Number(fields, "data_bits", kDataBits);
  rule.stop_bits = Number(fields, "stop_bits", kStopBits);
  fields.Finish();
  return rule;
}

Personality ReadPersonality(const Entry& entry, Place place) {
  Fields fields(entry);
  Personality personality = ReadPersonality(fields, place);
  fields.Finish();
  return personality;
}

Personality ReadPersonality(Fields& fields, Place place) {
  Personality personality;
  if (const std::optional<Entry> address = fields.Find("gpib")) personality.address = ReadAddress(*address);
  const std::string usual = personality.address ? "\n" : "\r";
  personality.terminator = fields.TextOr("terminator", usual);
  const std::optional<Entry> terminator = fields.Find("terminator");
  if (personality.address && place == Place::kOwnLine) place = Place::kBus;
  if (terminator && terminator->IsText("") && (!personality.address || place != Place::kBus))
    terminator->Wrong("must not be empty");
  const AnswerForm form{fields.TextOr("reply_terminator", usual), place};
  if (!personality.address) RefuseThoseOfABus(fields);
  personality.end = fields.YesOrNoOr("end", personality.end);
  personality.delay_ms = static_cast<std::int32_t>(fields.WholeOr("delay_ms", kDelayMs, 0));
  personality.keeps_replies = fields.YesOrNoOr("keeps_replies", personality.keeps_replies);
  if (const std::optional<Entry> rule = fields.Find("line")) personality.line = ReadLineRule(*rule);
  if (const std::optional<Entry> answer = fields.Find("discovery"))
    personality.discovery = ReadDiscoveryAnswer(*answer);

  if (const std::optional<Entry> answer = fields.Find("on_connect"))
    personality.on_connect = ReadAnswer(*answer, form);
  if (const std::optional<Entry> answer = fields.Find("default"))
    personality.unknown = ReadAnswer(*answer, form);
  if (const std::optional<Entry> answer = fields.Find("default_query"))
    personality.unknown_query = ReadAnswer(*answer, form);
  if (const std::optional<Entry> commands = fields.Find("commands"))
    ReadCommands(*commands, form, personality);
  return personality;
}

}  // namespace kesp::simulator
