// Reads a bus: devices with their addresses, and which calls of the driver fail.
#include "simulator/bus_reader.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "simulator/personality_reader.h"

namespace kesp::simulator {
namespace {

constexpr Range kAnyNumber{std::numeric_limits<std::int32_t>::min(),
                           std::numeric_limits<std::int32_t>::max()};
constexpr Range kCounting{1, std::numeric_limits<std::int32_t>::max()};
constexpr Range kResult{0, std::numeric_limits<std::int32_t>::max()};
constexpr std::string_view kMembers[] = {"devices", "failures", "registration", "secondary_offset_required",
                                         "record"};

std::optional<std::int32_t> Number(Fields& fields, std::string_view name, Range range) {
  const std::optional<std::int64_t> number = fields.Whole(name, range);
  if (!number) return std::nullopt;
  return static_cast<std::int32_t>(*number);
}

std::optional<gpib::CallName> ReadCallName(Fields& fields) {
  const std::optional<Entry> call = fields.Need("call");
  const std::string name = call ? call->Text() : "*";
  const std::optional<gpib::CallName> known = gpib::CallNamed(name);
  if (!known && name != "*") call->Wrong("must be ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl, ibrsp or *");
  return known;
}

gpib::Failure ReadFailure(const Entry& entry) {
  Fields fields(entry);
  gpib::Failure failure;
  failure.call = ReadCallName(fields);
  failure.at = Number(fields, "at", kCounting);
  failure.error = Number(fields, "error", kAnyNumber).value_or(failure.error);
  failure.status = Number(fields, "status", kAnyNumber);
  failure.count = Number(fields, "count", kAnyNumber).value_or(failure.count);
  failure.result = Number(fields, "result", kAnyNumber);
  fields.Finish();
  return failure;
}

void ReadDevices(Fields& fields, gpib::BusDescription& bus) {
  for (const Entry& entry : fields.List("devices")) {
    if (entry.Member("device")) {
      entry.Wrong("is a device at a serial line; on a bus there are instruments only");
      continue;
    }
    if (entry.Is(Value::Kind::kObject) && !entry.Member("gpib")) entry.Missing("gpib");
    Personality device = ReadPersonality(entry, Place::kBus);
    const auto stands_there = [&device](const auto& other) { return other.address == device.address; };
    if (device.address && std::any_of(bus.devices.begin(), bus.devices.end(), stands_there))
      entry.Wrong("has the address of another device");
    bus.devices.push_back(std::move(device));
  }
}

}  // namespace

bool IsBus(const Entry& entry) {
  return std::any_of(std::begin(kMembers), std::end(kMembers),
                     [&entry](std::string_view name) { return entry.Member(name).has_value(); });
}

gpib::BusDescription ReadBus(const Entry& entry) {
  Fields fields(entry);
  gpib::BusDescription bus;
  ReadDevices(fields, bus);
  for (const Entry& failure : fields.List("failures")) bus.failures.push_back(ReadFailure(failure));
  for (const Entry& result : fields.List("registration"))
    bus.registration.push_back(static_cast<std::int32_t>(result.Whole(kResult)));
  bus.secondary_offset_required = fields.YesOrNoOr("secondary_offset_required", false);
  bus.record = fields.YesOrNoOr("record", true);
  fields.Finish();
  return bus;
}

}  // namespace kesp::simulator
