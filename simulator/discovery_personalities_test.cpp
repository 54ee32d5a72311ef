// The personalities for discovery do what their descriptions say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "simulator/datagram_port_fake.h"
#include "simulator/description.h"
#include "simulator/discovery_responder.h"
#include "simulator/loopback_client.h"
#include "simulator/served_instrument.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kFolder = KESP_EXAMPLES "/discovery/";

// What is done in answer to so many requests, in the fake port's words.
std::vector<std::string> Discover(const std::string& name, int requests = 1,
                                  const std::optional<AddressRange>& from = std::nullopt) {
  Instrument instrument(LoadInstrument(kFolder + name));
  EventLog log({}, TimeOfDay);
  DatagramPortFake port;
  for (int i = 0; i < requests; ++i)
    port.input.push_back(ReceivedDatagram{std::string(kDiscoveryRequest), {}, {}});
  DiscoveryResponder responder(port, instrument, log, AnswerManner{from, 0});
  asio::io_context io;
  asio::co_spawn(io, responder.Run(), asio::detached);
  io.poll();
  return port.record;
}

std::string Identity(const std::string& name) {
  const ServedInstrument served(LoadInstrument(kFolder + name));
  return LoopbackClient(served.port()).Ask("*IDN?");
}

constexpr char kUsual[] = R"(- "\x00\x00\x00\xF7")";

TEST(DiscoveryPersonalities, EveryFile_IsDescribedAndRead) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    std::ifstream stream(entry.path());
    EXPECT_TRUE(nlohmann::json::parse(stream).contains("description")) << entry.path();
    EXPECT_NO_THROW(LoadInstrument(entry.path())) << entry.path();
    ++count;
  }
  EXPECT_EQ(count, 16U);
}

TEST(DiscoveryPersonalities, NetworkInstruments_AnswerOneAfterTheOther) {
  EXPECT_THAT(Discover("network-7100.json"), ElementsAre(R"(- "\x00\x00\x00\xF7\x00\x0Bq\x00")"));
  EXPECT_THAT(Discover("network-7200.json"),
              ElementsAre("pause 150", R"(- "\x00\x00\x00\xF7\x00\x16r\x00")"));
  EXPECT_THAT(Discover("network-7300.json"), ElementsAre("pause 600", R"(- "\x00\x00\x00\xF7\x00!s\x00")"));
  EXPECT_EQ(Identity("network-7100.json"), "KESP,7100,NET00011,1.0");
  EXPECT_EQ(Identity("network-7200.json"), "KESP,7200,NET00022,1.2");
  EXPECT_EQ(Identity("network-7300.json"), "KESP,7300,NET00033,2.0");
}

TEST(DiscoveryPersonalities, Identities_AreDifferent) {
  std::set<std::string> identities;
  const std::vector<std::string> names = {
      "network-7100.json", "network-7200.json", "network-7300.json", "silent.json",   "late.json",
      "twice.json",        "every-second.json", "malformed.json",    "oversize.json", "storm.json"};
  for (const std::string& name : names) {
    const std::string identity = Identity(name);
    EXPECT_EQ(std::count(identity.begin(), identity.end(), ','), 3) << identity;
    identities.insert(identity);
  }
  EXPECT_EQ(identities.size(), names.size());
}

TEST(DiscoveryPersonalities, Moments_AreAsDescribed) {
  EXPECT_THAT(Discover("silent.json", 3), IsEmpty());
  EXPECT_THAT(Discover("late.json"), ElementsAre("pause 4000", kUsual));
  EXPECT_THAT(Discover("twice.json"), ElementsAre(kUsual, kUsual));
  EXPECT_THAT(Discover("every-second.json"), IsEmpty());
  EXPECT_THAT(Discover("every-second.json", 4), ElementsAre(kUsual, kUsual));
}

TEST(DiscoveryPersonalities, Malformed_NeverHasF7) {
  const std::vector<std::string> record = Discover("malformed.json");
  ASSERT_EQ(record.size(), 3U);
  EXPECT_EQ(record[0], "- \"\"");
  EXPECT_EQ(record[1], R"(- "\xF6")");
  for (const std::string& datagram : record) EXPECT_EQ(datagram.find("\\xF7"), std::string::npos) << datagram;
}

TEST(DiscoveryPersonalities, Oversize_HasF7AtItsEnd) {
  const auto datagram =
      std::get<Datagram>(LoadInstrument(kFolder + "oversize.json").discovery.turns.at(0).at(0));
  EXPECT_EQ(datagram.bytes.size(), 65'507U);
  EXPECT_EQ(datagram.bytes.find('\xF7'), 65'506U);
}

TEST(DiscoveryPersonalities, Storm_IsHalfWithAndHalfWithoutF7) {
  const std::vector<std::string> record = Discover("storm.json");
  EXPECT_EQ(std::count(record.begin(), record.end(), kUsual), 5000);
  EXPECT_EQ(std::count(record.begin(), record.end(), R"(- "\x00\x00\x00\xF6")"), 5000);
  const std::vector<std::string> spread = Discover("storm.json", 1, ReadAddressRange("10.0.0.1-10.0.39.16"));
  const std::set<std::string> different(spread.begin(), spread.end());
  EXPECT_EQ(different.size(), 10'000U + 1);  // and the pauses
}

TEST(DiscoveryPersonalities, Fields_AreCounted) {
  EXPECT_EQ(Identity("one-field.json"), "KESP");
  EXPECT_EQ(Identity("two-fields.json"), "KESP,7100");
  const std::string hundred = Identity("hundred-fields.json");
  EXPECT_EQ(std::count(hundred.begin(), hundred.end(), ','), 99);
  EXPECT_EQ(hundred.substr(0, 30), "KESP,7100,NET00107,1.0,F5,F6,F");
  EXPECT_EQ(Identity("high-characters.json"),
            "KESP,71\xC8"
            "00,NET00110,1.0");
  for (const char* name : {"one-field.json", "two-fields.json", "hundred-fields.json", "high-characters.json",
                           "endless.json", "mute.json"}) {
    EXPECT_EQ(Discover(name).size(), 1U) << name;
  }
}

TEST(DiscoveryPersonalities, Endless_HasNoTerminatorAndStays) {
  const ServedInstrument served(LoadInstrument(kFolder + "endless.json"));
  LoopbackClient client(served.port());
  client.Send("*IDN?\r");
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  std::size_t length = 0;
  while (length < 10'000'000 && std::chrono::steady_clock::now() < deadline) {
    const Reply piece = client.ReadTo("\r", milliseconds(100));
    ASSERT_EQ(piece.end, Heard::kDeadline);  // no terminator, and no end of the line
    length += piece.bytes.size();
  }
  EXPECT_EQ(length, 10'000'000U);
  const Reply more = client.ReadTo("\r", milliseconds(100));
  EXPECT_EQ(more.end, Heard::kDeadline);
  EXPECT_EQ(more.bytes, "");
}

TEST(DiscoveryPersonalities, Mute_ListensAndSaysNothing) {
  const ServedInstrument served(LoadInstrument(kFolder + "mute.json"));
  LoopbackClient client(served.port());
  client.Send("*IDN?\r");
  const Reply reply = client.ReadTo("\r", milliseconds(100));
  EXPECT_EQ(reply.end, Heard::kDeadline);
  EXPECT_EQ(reply.bytes, "");
}

}  // namespace
}  // namespace kesp::simulator
