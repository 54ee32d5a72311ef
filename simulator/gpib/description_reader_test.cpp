// Whole descriptions of a bus, read and refused.
#include "simulator/gpib/description_reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace kesp::simulator::gpib {
namespace {

std::string RefusalOf(const std::string& json) {
  try {
    ReadBusDescription(json);
  } catch (const simulator::PersonalityError& error) {
    return error.what();
  }
  return "not refused";
}

// The refusal of a device with that further field.
std::string RefusalOfDevice(const std::string& field) {
  return RefusalOf(R"({"devices": [{"primary": 5, )" + field + "}]}");
}

// The replies to a command; one text "none" when the device does not know it.
std::vector<std::string> RepliesTo(const std::string& command, const DeviceDescription& device) {
  const auto found = device.commands.find(command);
  return found == device.commands.end() ? std::vector<std::string>{"none"} : found->second.replies;
}

TEST(DescriptionReaderTest, EmptyDescription_IsABusWithoutDevices) {
  const BusDescription bus = ReadBusDescription("{}");
  EXPECT_TRUE(bus.devices.empty());
  EXPECT_TRUE(bus.failures.empty());
  EXPECT_TRUE(bus.registration.empty());
  EXPECT_FALSE(bus.secondary_offset_required);
  EXPECT_TRUE(bus.record);
}

TEST(DescriptionReaderTest, BareDevice_HasTheUsualTerminators) {
  const BusDescription bus = ReadBusDescription(R"({"devices": [{"primary": 5}]})");
  const DeviceDescription& device = bus.devices.at(0);
  EXPECT_EQ(device.address, (Address{5, 0}));
  EXPECT_EQ(device.terminator, "\n");
  EXPECT_EQ(device.reply_terminator, "\n");
  EXPECT_TRUE(device.end);
  EXPECT_EQ(device.delay_ms, 0);
  EXPECT_FALSE(device.keeps_replies);
  EXPECT_TRUE(device.commands.empty());
  EXPECT_TRUE(device.unknown.replies.empty());
}

TEST(DescriptionReaderTest, WholeDevice_IsRead) {
  const BusDescription bus = ReadBusDescription(R"({"description": ["a", "b"], "devices": [{
    "description": "d", "primary": 30, "secondary": 126, "terminator": "\r", "reply_terminator": "", "end": false,
    "delay_ms": 7, "keeps_replies": true, "default": "what?",
    "commands": {"*IDN?": "me\u0081", "M?": ["1", "2"], "SET *": null, "*": "any"}}],
    "secondary_offset_required": true, "record": false, "registration": [2, 0]})");
  const DeviceDescription& device = bus.devices.at(0);
  EXPECT_EQ(device.address, (Address{30, 30}));
  EXPECT_EQ(device.terminator, "\r");
  EXPECT_EQ(device.reply_terminator, "");
  EXPECT_FALSE(device.end);
  EXPECT_EQ(device.delay_ms, 7);
  EXPECT_TRUE(device.keeps_replies);
  EXPECT_EQ(RepliesTo("*IDN?", device), std::vector<std::string>{"me\x81"});
  EXPECT_EQ(RepliesTo("M?", device), (std::vector<std::string>{"1", "2"}));
  EXPECT_TRUE(device.prefixes.at("SET ").replies.empty());
  EXPECT_EQ(device.prefixes.at("").replies, std::vector<std::string>{"any"});
  EXPECT_EQ(device.unknown.replies, std::vector<std::string>{"what?"});
  EXPECT_TRUE(bus.secondary_offset_required);
  EXPECT_FALSE(bus.record);
  EXPECT_EQ(bus.registration, (std::vector<std::int32_t>{2, 0}));
}

TEST(DescriptionReaderTest, Failures_AreRead) {
  const BusDescription bus = ReadBusDescription(R"({"failures": [
    {"description": "one", "call": "ibonl", "at": 2, "error": 14, "status": 32767, "count": 3, "result": 40000},
    {"call": "*"}]})");
  const Failure& first = bus.failures.at(0);
  EXPECT_EQ(first.call, CallName::kOnline);
  EXPECT_EQ(first.at, 2);
  EXPECT_EQ(first.error, 14);
  EXPECT_EQ(first.status, 32767);
  EXPECT_EQ(first.count, 3);
  EXPECT_EQ(first.result, 40000);
  const Failure& second = bus.failures.at(1);
  EXPECT_EQ(second.call, std::nullopt);
  EXPECT_EQ(second.at, std::nullopt);
  EXPECT_EQ(second.error, 0);
  EXPECT_EQ(second.status, std::nullopt);
  EXPECT_EQ(second.result, std::nullopt);
}

TEST(DescriptionReaderTest, CallNames_AreThoseOfTheDriver) {
  for (const std::string_view name : {"ibdev", "ibclr", "ibeos", "ibwrt", "ibrd", "ibonl"}) {
    const std::optional<CallName> call = CallNamed(name);
    ASSERT_TRUE(call) << name;
    EXPECT_EQ(NameOf(*call), name);
  }
  EXPECT_EQ(CallNamed("ibwait"), std::nullopt);
}

TEST(DescriptionReaderTest, UnknownFields_AreRefusedWithTheirPlace) {
  EXPECT_EQ(RefusalOf(R"({"device": []})"), "/device: is not a known field");
  EXPECT_EQ(RefusalOfDevice(R"("foo": 1)"), "/devices/0/foo: is not a known field");
  EXPECT_EQ(RefusalOf(R"({"failures": [{"call": "*", "when": 1}]})"),
            "/failures/0/when: is not a known field");
}

TEST(DescriptionReaderTest, WrongAddresses_AreRefused) {
  EXPECT_EQ(RefusalOf(R"({"devices": [{}]})"), "/devices/0/primary: is missing");
  EXPECT_EQ(RefusalOf(R"({"devices": [{"primary": 31}]})"),
            "/devices/0/primary: must be a whole number from 0 to 30");
  for (const char* secondary : {"31", "95"})
    EXPECT_EQ(RefusalOfDevice("\"secondary\": " + std::string(secondary)),
              "/devices/0/secondary: must be 0 for none, 1 to 30, or 96 to 126");
  EXPECT_EQ(RefusalOf(R"({"devices": [{"primary": 5, "secondary": 2}, {"primary": 5, "secondary": 98}]})"),
            "/devices/1: has the address of another device");
  EXPECT_EQ(RefusalOf(R"({"devices": [{"primary": 5}, {"primary": 5, "secondary": 96}, {"primary": 6}]})"),
            "not refused");
}

TEST(DescriptionReaderTest, WrongCommands_AreRefused) {
  EXPECT_EQ(RefusalOfDevice(R"("commands": [])"), "/devices/0/commands: must be an object");
  EXPECT_EQ(RefusalOfDevice(R"("commands": {"": "x"})"), "/devices/0/commands/: must not be empty");
  EXPECT_EQ(RefusalOfDevice(R"("commands": {"A\n?": "x"})"),
            "/devices/0/commands/A\n?: holds the terminator, so that it can never be received");
  EXPECT_EQ(RefusalOfDevice(R"("commands": {"A": "x", "A": "y"})"), "\"A\": is given twice in one object");
  const std::string kinds = "must be a text, a list of texts, or null for no reply";
  for (const char* answer : {"1", "[]", "{}", "true"})
    EXPECT_EQ(RefusalOfDevice(R"("commands": {"A": )" + std::string(answer) + "}"),
              "/devices/0/commands/A: " + kinds);
  EXPECT_EQ(RefusalOfDevice(R"("commands": {"A": ["x", 1]})"), "/devices/0/commands/A/1: must be a text");
  EXPECT_EQ(RefusalOfDevice(R"("commands": {"A": "\u20AC"})"),
            "/devices/0/commands/A: may only hold characters from \\u0000 to \\u00FF (one byte each)");
  EXPECT_EQ(RefusalOfDevice(R"("default": 1)"), "/devices/0/default: " + kinds);
}

TEST(DescriptionReaderTest, WrongTypes_AreRefused) {
  EXPECT_EQ(RefusalOf("[]"), "/: must be an object");
  EXPECT_EQ(RefusalOf(R"({"devices": {}})"), "/devices: must be a list");
  EXPECT_EQ(RefusalOf(R"({"devices": [1]})"), "/devices/0: must be an object");
  EXPECT_EQ(RefusalOfDevice(R"("end": 1)"), "/devices/0/end: must be true or false");
  EXPECT_EQ(RefusalOfDevice(R"("delay_ms": -1)"),
            "/devices/0/delay_ms: must be a whole number from 0 to 3600000");
  EXPECT_EQ(RefusalOf(R"({"failures": [{"call": "ibwait"}]})"),
            "/failures/0/call: must be ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl or *");
  EXPECT_EQ(RefusalOf(R"({"failures": [{"call": "*", "at": 0}]})"),
            "/failures/0/at: must be a whole number from 1 to 2147483647");
  for (const char* result : {"-1", "\"x\"", "1.5", "4294967296"})
    EXPECT_EQ(RefusalOf("{\"registration\": [0, " + std::string(result) + "]}"),
              "/registration/1: must be a whole number from 0 to 2147483647");
  EXPECT_EQ(RefusalOf("{").substr(0, 9), "not JSON:");
}

TEST(BuiltInBusTest, IsATemperatureControllerAtFive) {
  const BusDescription bus = BuiltInBus();
  ASSERT_EQ(bus.devices.size(), 1U);
  const DeviceDescription& device = bus.devices.front();
  EXPECT_EQ(device.address, (Address{5, 0}));
  EXPECT_EQ(RepliesTo("*IDN?", device), std::vector<std::string>{"KESP,GP488,SIM48805,1.0"});
  EXPECT_GT(RepliesTo("LOG?", device).at(0).size(), 120U);
  EXPECT_EQ(RepliesTo("LOG?", device).at(0).find('\n'), std::string::npos);
  EXPECT_TRUE(device.prefixes.contains("SETP "));
}

TEST(ShippedExampleTest, CanBeLoaded) {
  std::ifstream file(KESP_EXAMPLE_BUS, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const BusDescription bus = ReadBusDescription(text);
  EXPECT_GE(bus.devices.size(), 2U);
}

}  // namespace
}  // namespace kesp::simulator::gpib
