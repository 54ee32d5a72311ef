// Reads the description of a simulated bus from its JSON text.
#include "simulator/gpib/description_reader.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/json_fields.h"
#include "simulator/json_file.h"

namespace kesp::simulator::gpib {
namespace {

using nlohmann::json;
using simulator::JsonFields;
using simulator::PersonalityError;
using simulator::Range;

constexpr Range kAnyNumber{std::numeric_limits<std::int32_t>::min(),
                           std::numeric_limits<std::int32_t>::max()};
constexpr Range kCounting{1, std::numeric_limits<std::int32_t>::max()};
constexpr Range kDelayMs{0, 3'600'000};

std::int32_t Number(const JsonFields& fields, std::string_view field, Range range) {
  return static_cast<std::int32_t>(fields.Whole(field, range));
}

std::int32_t NumberOr(const JsonFields& fields, std::string_view field, Range range, std::int32_t otherwise) {
  return fields.Has(field) ? Number(fields, field, range) : otherwise;
}

std::optional<std::int32_t> NumberIfThere(const JsonFields& fields, std::string_view field, Range range) {
  if (!fields.Has(field)) return std::nullopt;
  return Number(fields, field, range);
}

// Hands each element of a list that may be left out on, with its place.
void ForEach(const JsonFields& fields, std::string_view field,
             const std::function<void(const json&, const std::string&)>& take) {
  if (!fields.Has(field)) return;
  const json& list = fields.Value(field);
  const std::string place = fields.PlaceOf(field);
  if (!list.is_array()) throw PersonalityError(place, "must be a list");
  for (std::size_t i = 0; i < list.size(); ++i) take(list[i], place + "/" + std::to_string(i));
}

std::string ReplyAt(const json& value, const std::string& place) {
  if (!value.is_string()) throw PersonalityError(place, "must be a text");
  return simulator::TextAt(value.get_ref<const std::string&>(), place);
}

Answer ReadAnswer(const json& value, const std::string& place) {
  if (value.is_null()) return {};
  if (value.is_string()) return {{ReplyAt(value, place)}};
  if (!value.is_array() || value.empty())
    throw PersonalityError(place, "must be a text, a list of texts, or null for no reply");
  Answer answer;
  for (std::size_t i = 0; i < value.size(); ++i)
    answer.replies.push_back(ReplyAt(value[i], place + "/" + std::to_string(i)));
  return answer;
}

void ReadCommands(const JsonFields& fields, DeviceDescription& device) {
  const JsonFields commands(fields.Value("commands"), fields.PlaceOf("commands"));
  for (const auto& item : fields.Value("commands").items()) {
    const std::string place = commands.PlaceOf(item.key());
    std::string name = simulator::TextAt(item.key(), place);
    if (name.empty()) throw PersonalityError(place, "must not be empty");
    if (!device.terminator.empty() && name.find(device.terminator) != std::string::npos)
      throw PersonalityError(place, "holds the terminator, so that it can never be received");
    const bool is_prefix = name.back() == '*';
    if (is_prefix) name.pop_back();
    (is_prefix ? device.prefixes : device.commands)[name] = ReadAnswer(item.value(), place);
  }
}

DeviceDescription ReadDevice(const json& value, const std::string& place) {
  const JsonFields fields(value, place);
  fields.AllowOnly({"description", "primary", "secondary", "terminator", "reply_terminator", "end",
                    "delay_ms", "keeps_replies", "commands", "default"});
  fields.CheckDescription();
  DeviceDescription device;
  device.address.primary = Number(fields, "primary", {0, 30});
  device.address.secondary = NumberOr(fields, "secondary", {0, 126}, 0);
  if (!device.address.IsValid())
    throw PersonalityError(fields.PlaceOf("secondary"), "must be 0 for none, 1 to 30, or 96 to 126");
  device.terminator = fields.TextOr("terminator", device.terminator);
  device.reply_terminator = fields.TextOr("reply_terminator", device.reply_terminator);
  device.end = fields.YesOrNoOr("end", device.end);
  device.delay_ms = NumberOr(fields, "delay_ms", kDelayMs, 0);
  device.keeps_replies = fields.YesOrNoOr("keeps_replies", device.keeps_replies);
  if (fields.Has("commands")) ReadCommands(fields, device);
  if (fields.Has("default")) device.unknown = ReadAnswer(fields.Value("default"), fields.PlaceOf("default"));
  return device;
}

std::optional<CallName> ReadCallName(const JsonFields& fields) {
  const std::string name = fields.Text("call");
  if (name == "*") return std::nullopt;
  const std::optional<CallName> call = CallNamed(name);
  if (call) return call;
  throw PersonalityError(fields.PlaceOf("call"), "must be ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl or *");
}

Failure ReadFailure(const json& value, const std::string& place) {
  const JsonFields fields(value, place);
  fields.AllowOnly({"description", "call", "at", "error", "status", "count", "result"});
  fields.CheckDescription();
  Failure failure;
  failure.call = ReadCallName(fields);
  failure.at = NumberIfThere(fields, "at", kCounting);
  failure.error = NumberOr(fields, "error", kAnyNumber, failure.error);
  failure.status = NumberIfThere(fields, "status", kAnyNumber);
  failure.count = NumberOr(fields, "count", kAnyNumber, failure.count);
  failure.result = NumberIfThere(fields, "result", kAnyNumber);
  return failure;
}

std::int32_t ReadRegistration(const json& value, const std::string& place) {
  if (value.is_number_integer() && value >= 0 && value <= kAnyNumber.most) return value.get<std::int32_t>();
  throw PersonalityError(place, "must be a whole number from 0 to " + std::to_string(kAnyNumber.most));
}

}  // namespace

BusDescription ReadBusDescription(const std::string& json_text) {
  const json value = simulator::ParseJson(json_text);
  const JsonFields fields(value, "");
  fields.AllowOnly(
      {"description", "devices", "failures", "registration", "secondary_offset_required", "record"});
  fields.CheckDescription();
  BusDescription bus;
  ForEach(fields, "devices", [&bus](const json& element, const std::string& place) {
    DeviceDescription device = ReadDevice(element, place);
    const auto stands_there = [&device](const auto& other) { return other.address == device.address; };
    if (std::any_of(bus.devices.begin(), bus.devices.end(), stands_there))
      throw PersonalityError(place, "has the address of another device");
    bus.devices.push_back(std::move(device));
  });
  ForEach(fields, "failures", [&bus](const json& element, const std::string& place) {
    bus.failures.push_back(ReadFailure(element, place));
  });
  ForEach(fields, "registration", [&bus](const json& element, const std::string& place) {
    bus.registration.push_back(ReadRegistration(element, place));
  });
  bus.secondary_offset_required = fields.YesOrNoOr("secondary_offset_required", false);
  bus.record = fields.YesOrNoOr("record", true);
  return bus;
}

}  // namespace kesp::simulator::gpib
