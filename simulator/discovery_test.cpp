// Answers to discovery on the fake port: what descriptions say, and what the files for searching a network
// do.
#include <gtest/gtest.h>

#include <algorithm>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/datagram_port_fake.h"
#include "simulator/description.h"
#include "simulator/device_scenes.h"
#include "simulator/discovery_responder.h"

namespace kesp::simulator {
namespace {

const asio::ip::udp::endpoint kClient(asio::ip::make_address("10.88.0.1"), 49152);
const std::string kRequest(kDiscoveryRequest);

class DiscoveryTest : public testing::Test {
 protected:
  // The log after these datagrams have been answered, without the times and the client's address.
  std::string Answer(Personality personality, const std::vector<std::string>& datagrams = {kRequest},
                     const std::string& from = "", unsigned rate = 0) {
    Instrument instrument(std::move(personality));
    std::ostringstream lines;
    EventLog log({&lines}, [] { return std::string("-"); });
    for (const std::string& bytes : datagrams) port_.input.push_back(ReceivedDatagram{bytes, kClient, {}});
    DiscoveryResponder responder(port_, {{instrument, {ReadAddressRange(from), rate}}}, log);
    asio::io_context io;
    asio::co_spawn(io, responder.Run(), asio::detached);
    io.poll();
    std::string text = lines.str();
    const std::string client = " 10.88.0.1:49152";
    for (std::size_t place = 0; (place = text.find(client)) != std::string::npos;)
      text.erase(place, client.size());
    return text;
  }
  std::string Answer(const std::string& discovery, const std::vector<std::string>& datagrams = {kRequest},
                     const std::string& from = "", unsigned rate = 0) {
    return Answer(ReadInstrument(R"({"discovery": )" + discovery + "}"), datagrams, from, rate);
  }

  // What went out since the last call, such as `- "x"; pause 5`.
  std::string Sent() {
    std::string sent;
    for (const std::string& entry : std::exchange(port_, DatagramPortFake()).record)
      sent += (sent.empty() ? "" : "; ") + entry;
    return sent;
  }
  std::size_t Count(const std::string& entry) const {
    return static_cast<std::size_t>(std::count(port_.record.begin(), port_.record.end(), entry));
  }

  DatagramPortFake port_;
};

TEST_F(DiscoveryTest, EachAnswer_IsWhatItSays) {
  const std::vector<std::string> three(3, kRequest);
  const struct {
    std::string discovery;
    std::string sent;
    std::string from = "";
    std::vector<std::string> datagrams = {kRequest};
    unsigned rate = 0;
  } cases[] = {
      {"null", ""},
      {R"("here \u00F7")", R"(- "here \xF7")"},
      {R"([{"wait_ms": 40}, {"send": "1"}, {"wait_ms": 7}, {"send": "", "end": "!"}])",
       R"(pause 40; - "1"; pause 7; - "!")"},
      {R"([{"send_hex": "00"}, {"repeat": "ab", "bytes": 3}])", R"(- "\x00"; - "aba")"},
      {R"({"cycle": [[], [{"send": "2nd"}]]})",
       R"(- "2nd")",
       "",
       {kRequest, "no request", kRequest, kRequest}},
      {R"([{"wait_ms": 5}, {"send": "A"}, {"send": "B"}])",
       R"(pause 5; 10.0.0.9 "A"; 10.0.0.10 "A"; 10.0.0.9 "B"; 10.0.0.10 "B")", "10.0.0.9-10.0.0.10"},
      {R"([{"storm": [{"send": "A"}, {"send": "B"}], "datagrams": 4}])",
       R"(10.0.0.255 "A"; 10.0.1.0 "B"; 10.0.1.1 "A"; 10.0.0.255 "B")", "10.0.0.255-10.0.1.1"},
      {R"([{"storm": [{"send": "A"}], "datagrams": 3}])",
       R"(- "A"; pause 334; - "A"; pause 334; - "A")",
       "",
       {kRequest},
       3},
      {R"([{"send": "A"}, {"storm": [{"send": "B"}], "datagrams": 2}])",
       R"(- "A"; pause 334; - "B"; pause 334; - "B")",
       "",
       {kRequest},
       3},
  };
  for (const auto& [discovery, sent, from, datagrams, rate] : cases) {
    Answer(discovery, datagrams, from, rate);
    EXPECT_EQ(Sent(), sent) << discovery;
  }
}

TEST_F(DiscoveryTest, Log_HasRequestsAndAnswers) {
  EXPECT_EQ(Answer(R"("12345")", {kRequest, "", kRequest + '\0', std::string("\x00\x01\x00\xF7", 4)}),
            "- discovery from\n- discovery reply to (5 bytes)\n- no discovery from: \"\" (0 bytes)\n"
            "- no discovery from: \"\\x00\\x01\\x00\\xF6\\x00\" (5 bytes)\n"
            "- no discovery from: \"\\x00\\x01\\x00\\xF7\" (4 bytes)\n");
  EXPECT_EQ(port_.destinations, std::vector<asio::ip::udp::endpoint>{kClient});
  EXPECT_EQ(Answer(R"("1")", {kRequest}, "10.0.0.1"),
            "- discovery from\n- discovery reply to from 10.0.0.1 (1 byte)\n");
  EXPECT_EQ(Answer(R"("0123456789")", {kRequest}, "10.88.4.1-10.88.7.232"),
            "- discovery from\n- discovery replies to from 10.88.4.1-10.88.7.232: 1000 sent (10000 bytes), 0 "
            "failed\n");
  EXPECT_EQ(port_.record.back(), "10.88.7.232 \"0123456789\"");
  EXPECT_EQ(Count("pause 0"), 15U) << "others have their turn";
}

TEST_F(DiscoveryTest, SeveralInstruments_AnswerEachForItself) {
  Instrument first(ReadInstrument(R"({"discovery": {"cycle": ["A", "a"]}})"));
  Instrument silent(ReadInstrument(R"({"discovery": null})"));
  Instrument second(ReadInstrument(R"({"discovery": [{"send": "B"}, {"send": "b"}]})"));
  EventLog log({}, [] { return std::string(); });
  for (int i = 0; i < 2; ++i) port_.input.push_back(ReceivedDatagram{kRequest, kClient, {}});
  DiscoveryResponder responder(
      port_,
      {{first, {ReadAddressRange("10.0.0.1"), 1}}, {silent, {}}, {second, {ReadAddressRange("10.0.0.2"), 1}}},
      log);
  asio::io_context io;
  asio::co_spawn(io, responder.Run(), asio::detached);
  io.poll();
  EXPECT_EQ(Sent(), R"(10.0.0.1 "A"; 10.0.0.2 "B"; pause 1000; 10.0.0.2 "b"; 10.0.0.1 "a"; )"
                    R"(10.0.0.2 "B"; pause 1000; 10.0.0.2 "b")");
}

TEST_F(DiscoveryTest, Failures_AreLoggedAndTheOthersGo) {
  for (std::size_t failing = 0; failing < 3; ++failing) {
    port_.error_of = [failing](std::size_t number) {
      return number == failing ? std::make_error_code(std::errc::network_unreachable) : std::error_code();
    };
    const std::string log = Answer(R"("A")", {kRequest}, "10.0.0.0-10.0.0.2");
    EXPECT_NE(log.find("- discovery reply to from 10.0.0." + std::to_string(failing) +
                       " failed: Network is unreachable\n"),
              std::string::npos)
        << log;
    EXPECT_EQ(Sent(), R"(10.0.0.0 "A"; 10.0.0.1 "A"; 10.0.0.2 "A")");
  }
  port_.error_of = [](std::size_t number) {
    return number % 2 == 1 ? std::make_error_code(std::errc::no_buffer_space) : std::error_code();
  };
  EXPECT_EQ(Answer(R"([{"storm": [{"send": "A"}], "datagrams": 40}])", {kRequest}, "", 2000),
            "- discovery from\n- discovery reply to failed: No buffer space available\n"
            "- discovery replies to: 20 sent (20 bytes), 20 failed\n");
  EXPECT_EQ(Count("pause 10"), 1U);
  port_ = DatagramPortFake();
  port_.input.push_back(ReceivedDatagram{{}, {}, std::make_error_code(std::errc::connection_refused)});
  EXPECT_EQ(Answer(R"("A")").substr(0, 75),
            "- cannot receive a discovery datagram: Connection refused\n- discovery from\n");
  EXPECT_EQ(Sent(), R"(pause 50; - "A")");
}

TEST(AddressRange, OtherTexts_AreNone) {
  EXPECT_EQ(ReadAddressRange("10.88.4.1-10.88.7.232")->Text(), "10.88.4.1-10.88.7.232");
  EXPECT_EQ(ReadAddressRange("10.0.0.1-10.0.0.1")->Text(), "10.0.0.1");
  EXPECT_EQ(ReadAddressRange("0.0.0.0-0.0.255.255")->size(), 65'536U);
  for (const char* text :
       {"", "-", "10.0.0.1-", "-10.0.0.1", "10.0.0.2-10.0.0.1", "10.0.0.256", "::1", "10.0.0.1-::2",
        "10.0.0.1 - 10.0.0.2", "10.0.0.1-10.0.0.2-10.0.0.3", "10.0.0.0-10.1.0.0", "host"})
    EXPECT_FALSE(ReadAddressRange(text)) << text;
}

// The files by what they answer to discovery and to "*IDN?".
class DiscoveryFiles : public DiscoveryTest {
 protected:
  static Personality File(const std::string& name) {
    return std::get<Personality>(LoadDescription(KESP_EXAMPLES "/discovery/" + name + ".json"));
  }
  static std::string Identity(const std::string& name) {
    return Heard(*DeviceOf(File(name)), 0, "*IDN?\r").out;
  }
};

TEST_F(DiscoveryFiles, EachFile_DoesWhatItsDescriptionSays) {
  const std::string usual = R"(- "\x00\x00\x00\xF7")";
  const std::string whole = R"(- "\x00\x00\x00\xF7KESP simulated instrument\x00")";
  const std::string many = "KESP,7100,NET00107,1.0,F5,F6,F7";
  const struct {
    std::string name;
    std::string sent;
    std::string identity;
    std::size_t requests = 1;
  } cases[] = {
      {"network-7100", R"(- "\x00\x00\x00\xF7\x00\x0Bq\x00")", "KESP,7100,NET00011,1.0\r"},
      {"network-7200", R"(pause 150; - "\x00\x00\x00\xF7\x00\x16r\x00")", "KESP,7200,NET00022,1.2\r"},
      {"network-7300", R"(pause 600; - "\x00\x00\x00\xF7\x00!s\x00")", "KESP,7300,NET00033,2.0\r"},
      {"silent", "", "KESP,7100,NET00101", 3},
      {"late", "pause 4000; " + usual, "KESP,7100,NET00102"},
      {"twice", usual + "; " + usual, "KESP,7100,NET00103"},
      {"every-second", usual + "; " + usual, "KESP,7100,NET00104", 4},
      {"malformed", R"(- ""; - "\xF6"; - ")", "KESP,7100,NET0010"},
      {"one-field", whole, "KESP\r"},
      {"two-fields", whole, "KESP,7100\r"},
      {"hundred-fields", whole, many},
      {"high-characters", whole,
       "KESP,71\xC8"
       "00,NET00110,1.0\r"},
      {"endless", whole, ""},
      {"mute", usual, ""},
  };
  for (const auto& [name, sent, identity, requests] : cases) {
    Answer(File(name), std::vector<std::string>(requests, kRequest));
    const std::string all = Sent();
    EXPECT_EQ(all.substr(0, name == "malformed" ? sent.size() : all.size()), sent) << name;
    EXPECT_EQ(name == "malformed" && all.find("\\xF7") != std::string::npos, false);
    EXPECT_EQ(Identity(name).substr(0, identity.size()), identity) << name;
  }
  const std::string hundred = Identity("hundred-fields");
  EXPECT_EQ(std::count(hundred.begin(), hundred.end(), ','), 99);
  const std::string endless = Identity("endless");
  EXPECT_EQ(endless.size(), 10'000'000U);
  EXPECT_EQ(endless.find('\r'), std::string::npos);
  EXPECT_EQ(Identity("mute"), "");
}

TEST_F(DiscoveryFiles, OversizeAndStorm_HaveF7WhereTheySay) {
  const auto datagram = std::get<Datagram>(File("oversize").discovery.turns.at(0).at(0));
  EXPECT_EQ(datagram.bytes.size(), 65'507U);
  EXPECT_EQ(datagram.bytes.find('\xF7'), 65'506U);
  Answer(File("storm"));
  EXPECT_EQ(Count(R"(- "\x00\x00\x00\xF7")"), 5000U);
  EXPECT_EQ(Count(R"(- "\x00\x00\x00\xF6")"), 5000U);
}

TEST_F(DiscoveryFiles, Identities_AreDifferent) {
  std::set<std::string> identities;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KESP_EXAMPLES "/discovery")) {
    const std::string name = entry.path().stem().string();
    ++files;
    if (name != "endless" && name != "mute") identities.insert(Identity(name));
  }
  EXPECT_EQ(files, 16U);
  EXPECT_EQ(identities.size(), files - 2);
}

}  // namespace
}  // namespace kesp::simulator
