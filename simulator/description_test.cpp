// Descriptions, read and refused: every mistake with its line and its place, all at once.
#include "simulator/description.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <tuple>

#include "simulator/description_error.h"
#include "simulator/device_scenes.h"
#include "simulator/examples.h"

namespace kesp::simulator {
namespace {

namespace fs = std::filesystem;

std::string MistakesIn(const std::string& json, const fs::path& folder = {}) {
  try {
    ReadDescription(json, "d", folder);
  } catch (const DescriptionError& error) {
    return error.what();
  }
  return "";
}

struct Mistake {
  std::string json;
  std::string text;  // without "d:1: "
};

TEST(Description, EachMistake_IsToldWithItsPlace) {
  const std::string bytes = "may only hold characters from \\u0000 to \\u00FF (one byte each)";
  const std::string answer = "must be a text, null, a list of actions, or {\"cycle\": [...]} of these";
  const std::string kinds =
      "(send, send_hex, wait_ms, split, trickle, random, repeat, flood_ms, close, reset, echo, merge_next, "
      "status_byte)";
  const std::string datagram =
      "is not an action of discovery (send, send_hex, random, repeat, storm, wait_ms)";
  const std::string own = "needs a line of the device's own, which it has not behind another one or on a bus";
  const std::string behind = R"({"device": "radio_modem", "behind": {"1": {"default": [{)";
  const std::string poll = "goes with \"gpib\" only, since nothing else polls status bytes";
  const auto whole = [](const std::string& from, const std::string& to) {
    return "must be a whole number from " + from + " to " + to;
  };
  const auto action = [](const std::string& members) { return R"({"default": [{)" + members + "}]}"; };
  const auto device = [](const std::string& members) {
    return R"({"devices": [{"gpib": {"primary": 5}, )" + members + "}]}";
  };
  const std::string host = "must be an IPv4 address such as 127.0.0.2";
  const auto network = [](const std::string& devices) { return R"({"devices": [)" + devices + "]}"; };
  const Mistake mistakes[] = {
      {"[]", "/: must be an object"},
      {R"({"comands": {}})", "/comands: is not a known member"},
      {R"({"description": ["a", 5]})", "/description: must be a text or a list of texts"},
      {R"({"terminator": ""})", "/terminator: must not be empty"},
      {R"({"device": "radio_modem", "behind": {"1": {"gpib": {"primary": 5}, "terminator": ""}}})",
       "/behind/1/terminator: must not be empty"},
      {R"({"terminator": 13})", "/terminator: must be a text"},
      {R"({"commands": []})", "/commands: must be an object"},
      {R"({"commands": {"A?": 1}})", "/commands/A?: " + answer},
      {R"({"commands": {"A\r": []}})",
       "/commands/A\r: holds the terminator, so that it can never be received"},
      {R"({"commands": {"\u0100": []}})", "/commands/\xC4\x80: " + bytes},
      {R"({"default": "\u0100"})", "/default: " + bytes},
      {R"({"default": ["1"]})",
       "/default/0: must be an action, such as {\"send\": \"...\"}; texts in turn are {\"cycle\": [...]}"},
      {R"({"default": [5]})", "/default/0: must be an object"},
      {R"({"default": {"cycle": []}})", "/default/cycle: must be a list of one or more answers"},
      {R"({"default": {"cycle": [1]}})", "/default/cycle/0: " + answer},
      {R"({"default": {"cicle": [[]]}})",
       "/default/cycle: is missing\nd:1: /default/cicle: is not a known member"},
      {R"({"on_connect": [{"sned": "1"}]})", "/on_connect/0: is not a known action " + kinds},
      {action(R"("send": 1)"), "/default/0/send: must be a text"},
      {action(R"("send": "1", "gap_ms": 1)"), "/default/0/gap_ms: is not a known member"},
      {action(R"("send_hex": "0")"),
       "/default/0/send_hex: must be pairs of hexadecimal digits, for example \"00 FF\""},
      {action(R"("wait_ms": 3600001)"), "/default/0/wait_ms: " + whole("0", "3600000")},
      {action(R"("wait_ms": 1.5)"), "/default/0/wait_ms: " + whole("0", "3600000")},
      {action(R"("wait_ms": 18446744073709551615)"), "/default/0/wait_ms: " + whole("0", "3600000")},
      {action(R"("split": "1", "gap_ms": 1)"), "/default/0/pieces: is missing"},
      {action(R"("split": "1", "gap_ms": 1, "pieces": 0)"), "/default/0/pieces: " + whole("1", "1000000")},
      {action(R"("trickle": "1")"), "/default/0/gap_ms: is missing"},
      {action(R"("random": 0)"), "/default/0/random: " + whole("1", "67108864")},
      {action(R"("random": 1, "seed": -1)"), "/default/0/seed: " + whole("0", "4294967295")},
      {action(R"("repeat": "", "bytes": 1)"), "/default/0/repeat: must not be empty"},
      {action(R"("repeat": "1")"), "/default/0/bytes: is missing"},
      {action(R"("close": false)"), "/default/0/close: must be true, or be left out"},
      {action(R"("merge_next": true}, {"wait_ms": 1)"),
       R"(/default: "merge_next" goes only with "send", "send_hex", "random" and "echo")"},
      {R"({"line": 9600})", "/line: must be an object"},
      {R"({"line": {}})", "/line/baud: is missing"},
      {R"({"line": {"baud": 49}})", "/line/baud: " + whole("50", "4000000")},
      {R"({"line": {"baud": 50, "parity": "X"}})", "/line/parity: must be N, E, O, M or S"},
      {R"({"line": {"baud": 50, "data_bits": 9}})", "/line/data_bits: " + whole("5", "8")},
      {R"({"line": {"baud": 50, "stop_bits": 3}})", "/line/stop_bits: " + whole("1", "2")},
      {R"({"discovery": [{"close": true}]})", "/discovery/0: " + datagram},
      {R"({"discovery": [{"wait_ms": 5, "random": 3}]})", "/discovery/0/random: is not a known member"},
      {R"({"discovery": [{"repeat": "x", "bytes": 65508}]})",
       "/discovery/0: makes a datagram of 65508 bytes; 65507 is the most"},
      {R"({"discovery": [{"storm": [], "datagrams": 1}]})",
       "/discovery/0/storm: must be a list of one or more datagrams"},
      {R"({"discovery": [{"storm": [{"wait_ms": 1}], "datagrams": 1}]})",
       "/discovery/0/storm/0: is not a datagram (send, send_hex, random, repeat)"},
      {R"({"discovery": [{"storm": [{"send": ""}]}]})", "/discovery/0/datagrams: is missing"},
      {R"({"device": "toaster", "x": 1})", R"(/device: must be "omega", "radio_modem" or "port_switch")"},
      {R"({"device": "omega", "values": {}})", "/address: is missing"},
      {R"({"device": "omega", "address": "A", "values": {}})", "/address: must be digits"},
      {R"({"device": "omega", "address": "1", "values": {"": "1"}})", "/values: has a value without a name"},
      {R"({"device": "omega", "address": "1", "values": {"A": 1}})", "/values/A: must be a text"},
      {R"({"device": "omega", "address": "1", "values": {}, "check": "odd"})",
       R"(/check: must be "right" or "wrong")"},
      {R"({"device": "radio_modem"})", "/behind: is missing"},
      {R"({"device": "radio_modem", "behind": {"X": {}}})",
       "/behind/X: must be a hexadecimal number of at most 8 digits"},
      {R"({"device": "radio_modem", "behind": {}, "registers": {"XX": "1"}})",
       "/registers/XX: is not a known member"},
      {R"({"device": "radio_modem", "behind": {}, "registers": {"DL": "123456789"}})",
       "/registers/DL: must be a hexadecimal number of at most 8 digits"},
      {R"({"device": "radio_modem", "behind": {"1": {}, "01": {}}})",
       "/behind/01: has the address of another device"},
      {R"({"device": "radio_modem", "behind": {}, "nonvolatile": "/"})", "/nonvolatile: /: cannot be read"},
      {R"({"device": "radio_modem", "behind": {}, "answers": "some"})",
       "/answers: must be \"whole\", \"none\", \"half_ok\" or \"no_cr\""},
      {behind + R"("reset": true}]}}})", "/behind/1/default/0: would end the line of the device before it"},
      {behind + R"("close": true}]}}})", "/behind/1/default/0: would end the line of the device before it"},
      {behind + R"("flood_ms": 1}]}}})", "/behind/1/default/0: " + own},
      {behind + R"("merge_next": true}]}}})", "/behind/1/default/0: " + own},
      {behind + R"("status_byte": 1}]}}})", "/behind/1/default/0: " + poll},
      {action(R"("status_byte": 1)"), "/default/0: " + poll},
      {device(R"("default": [{"status_byte": 256}])"),
       "/devices/0/default/0/status_byte: " + whole("0", "255")},
      {device(R"("default": [{"merge_next": true}])"), "/devices/0/default/0: " + own},
      {R"({"gpib": {"primary": 5}, "default": [{"flood_ms": 1}]})", "/default/0: " + own},
      {R"({"end": false})", "/end: goes with \"gpib\" only"},
      {R"({"delay_ms": 1})", "/delay_ms: goes with \"gpib\" only"},
      {R"({"keeps_replies": true})", "/keeps_replies: goes with \"gpib\" only"},
      {R"({"devices": [{"device": "omega", "address": "1", "values": {}}]})",
       "/devices/0: is a device at a serial line; on a bus there are instruments only"},
      {R"({"device": "port_switch", "model": 5, "ports": {}})", "/model: must be 4, 6 or 8"},
      {R"({"device": "port_switch", "model": 4, "ports": {"ABC": {}}})",
       "/ports/ABC: must have a name of one or two characters"},
      {R"({"device": "port_switch", "model": 4, "ports": {"A": {}, "B": {}, "C": {}, "D": {}, "E": {}}})",
       "/ports: has more ports than the model"},
      {R"({"device": "port_switch", "model": 6, "ports": {"A": {}, "0A": {}}})",
       "/ports/0A: has the name of another port"},
      {R"({"device": "port_switch", "model": 4, "ports": {"A": "/nowhere.json"}})",
       "/ports/A: /nowhere.json: cannot be read"},
      {network(R"({"tcp": {"port": 1}}, {})"), "/devices/1/tcp: is missing"},
      {network(R"({"tcp": {}})"), "/devices/0/tcp/port: is missing"},
      {network(R"({"tcp": {"port": 0}})"), "/devices/0/tcp/port: " + whole("1", "65535")},
      {network(R"({"tcp": {"port": 1, "host": "127.0.0.256"}})"), "/devices/0/tcp/host: " + host},
      {network(R"({"tcp": {"port": 1, "host": "127.0.0.01"}})"), "/devices/0/tcp/host: " + host},
      {network(R"({"tcp": {"port": 1, "host": "127.0.0.1.1"}})"), "/devices/0/tcp/host: " + host},
      {network(R"({"tcp": {"port": 1, "hots": "127.0.0.1"}})"), "/devices/0/tcp/hots: is not a known member"},
      {network(R"({"tcp": {"port": 1}}, {"tcp": {"host": "127.0.0.1", "port": 1}})"),
       "/devices/1: has the address of another device"},
      {network(R"({"tcp": {"port": 1}, "terminator": ""})"), "/devices/0/terminator: must not be empty"},
      {network(R"({"tcp": {"port": 1}, "gpib": {"primary": 5}})"),
       "/devices/0/gpib: is an address on a bus, which goes without \"tcp\""},
      {network(R"({"tcp": {"port": 1}}, {"device": "omega"})"),
       "/devices/1: is a device at a serial line; on a network there are instruments only"},
      {R"({"devices": [{"tcp": {"port": 1}}], "failures": []})", "/failures: is not a known member"},
      {R"({"tcp": {"port": 1}})", "/tcp: is not a known member"},
      {R"({"devices": {}})", "/devices: must be a list"},
      {R"({"devices": [{}]})", "/devices/0/gpib: is missing"},
      {R"({"devices": [{"gpib": {}}]})", "/devices/0/gpib/primary: is missing"},
      {R"({"devices": [{"gpib": {"primary": 31}}]})", "/devices/0/gpib/primary: " + whole("0", "30")},
      {R"({"devices": [{"gpib": {"primary": 5, "secondary": 95}}]})",
       "/devices/0/gpib/secondary: must be 0 for none, 1 to 30, or 96 to 126"},
      {R"({"devices": [{"gpib": {"primary": 5, "secondary": 2}}, {"gpib": {"primary": 5, "secondary": 98}}]})",
       "/devices/1: has the address of another device"},
      {device(R"("end": 1)"), "/devices/0/end: must be true or false"},
      {device(R"("delay_ms": -1)"), "/devices/0/delay_ms: " + whole("0", "3600000")},
      {device(R"("commands": {"A\n": null})"),
       "/devices/0/commands/A\n: holds the terminator, so that it can never be received"},
      {device(R"("default": [{"flood_ms": 1}])"), "/devices/0/default/0: " + own},
      {R"({"failures": [{}]})", "/failures/0/call: is missing"},
      {R"({"failures": [{"call": "ibwait"}]})",
       "/failures/0/call: must be ibdev, ibclr, ibeos, ibwrt, ibrd, ibonl, ibrsp or *"},
      {R"({"failures": [{"call": "*", "at": 0}]})", "/failures/0/at: " + whole("1", "2147483647")},
      {R"({"registration": [-1]})", "/registration/0: " + whole("0", "2147483647")},
      {R"({"record": null})", "/record: must be true or false"},
  };
  for (const Mistake& mistake : mistakes) EXPECT_EQ(MistakesIn(mistake.json), "d:1: " + mistake.text);
}

TEST(Description, AllMistakes_AreToldAtOnceInTheOrderOfTheirLines) {
  EXPECT_EQ(MistakesIn("// A comment is fine.\n"
                       "{\n"
                       "  \"terminator\": 1, /* and so\n"
                       "  is this */ \"bogus\": true,\n"
                       "  \"commands\": {\n"
                       "    \"A?\": [{\"wait_ms\": \"long\"},\n"
                       "           {\"send\": 5}],\n"
                       "    \"A?\": null,\n"
                       "    \"B?\": 12\n"
                       "  }\n"
                       "}\n"),
            "d:3: /terminator: must be a text\n"
            "d:4: /bogus: is not a known member\n"
            "d:6: /commands/A?/0/wait_ms: must be a whole number from 0 to 3600000\n"
            "d:7: /commands/A?/1/send: must be a text\n"
            "d:8: /commands/A?: is given twice, first in line 6\n"
            "d:9: /commands/B?: must be a text, null, a list of actions, or {\"cycle\": [...]} of these");
}

TEST(Description, WhatIsNoJson_IsToldWithItsLine) {
  for (const char* json : {"", "{} {}", "{\"default\": 'x'}", "{\"default\": \"\xFF\"}", "{\"default\": 1,}"})
    EXPECT_NE(MistakesIn(json).find("is not JSON: "), std::string::npos) << json;
  EXPECT_EQ(MistakesIn("{\n\"commands\": {\n,}\n}").rfind("d:3: /commands: is not JSON: ", 0), 0U);
  EXPECT_EQ(MistakesIn("{\"commands\": " + std::string(1000, '[')).find("is nested too deeply") ==
                std::string::npos,
            false);
}

class DescriptionFiles : public testing::Test {
 protected:
  DescriptionFiles() { fs::create_directory(folder_); }
  ~DescriptionFiles() override { fs::remove_all(folder_); }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
    return (folder_ / name).string();
  }

  const fs::path folder_ = testing::TempDir() + "kesp_descriptions_" + std::to_string(::getpid());
};

TEST_F(DescriptionFiles, MistakesInFilesThatOthersName_AreToldWithTheirNames) {
  const std::string inner = Write("inner.json", "{\n\"bogus\": 1}");
  const std::string itself = Write("itself.json", "\"itself.json\"");
  Write("modem.json", R"({"device": "radio_modem", "behind": {}})");
  EXPECT_EQ(MistakesIn(R"({"device": "port_switch", "model": 4, "ports": {
  "A": "inner.json", "B": "modem.json", "C": "itself.json"}, "line": {}, "x": 1})",
                       folder_),
            inner +
                ":2: /bogus: is not a known member\n"
                "d:2: /ports/B: names a device; write it here instead\n"
                "d:2: /line/baud: is missing\n"
                "d:2: /x: is not a known member\n" +
                itself + ":1: /: must be an object");
}

// A description that is read in all its parts is played in played_device_test.cpp and its like.
TEST(Description, LineAndBus_AreRead) {
  const Personality personality =
      ReadInstrument(R"({"line": {"baud": 19200, "parity": "M", "data_bits": 7, "stop_bits": 2}})");
  EXPECT_EQ(TextOf(personality.line.value()), "19200,M,7,2");
  const gpib::BusDescription bus = ReadBus(R"({
    "failures": [{"call": "ibonl", "at": 2, "error": 14, "status": 32767, "count": 3, "result": 40000},
                 {"description": "any", "call": "*"}],
    "secondary_offset_required": true, "record": false, "registration": [2, 0]})");
  const gpib::Failure& first = bus.failures.at(0);
  EXPECT_EQ(std::tuple(first.call, first.at, first.error, first.status, first.count, first.result),
            std::tuple(gpib::CallName::kOnline, 2, 14, 32767, 3, 40000));
  EXPECT_EQ(bus.failures.at(1).call, std::nullopt);
  EXPECT_EQ(bus.failures.at(1).at, std::nullopt);
  EXPECT_TRUE(bus.secondary_offset_required);
  EXPECT_FALSE(bus.record);
  EXPECT_EQ(bus.registration, (std::vector<std::int32_t>{2, 0}));
  EXPECT_TRUE(ReadBus("{}").devices.empty());
  EXPECT_EQ(ReadBus(R"({"gpib": {"primary": 30, "secondary": 126}})").devices.at(0).address,
            (gpib::Address{30, 30}));
}

TEST(Description, Network_HasAddressesAndAnswersToDiscoveryWhereGiven) {
  const auto network = std::get<NetworkDescription>(ReadDescription(
      R"({"devices": [{"tcp": {"port": 10001}, "discovery": "x"}, {"tcp": {"host": "0.0.0.0", "port": 65535}}]})",
      "d"));
  ASSERT_EQ(network.devices.size(), 2U);
  EXPECT_EQ(network.devices[0].address, (TcpAddress{"127.0.0.1", 10001}));
  EXPECT_EQ(network.devices[1].address, (TcpAddress{"0.0.0.0", 65535}));
  EXPECT_EQ(network.devices[0].personality.discovery.turns.at(0).size(), 1U);
  EXPECT_TRUE(network.devices[1].personality.discovery.turns.at(0).empty());
}

TEST_F(DescriptionFiles, FilesThatAreNamed_AreLookedForBesideTheFile) {
  Write("B\u00E4r \u03A9.json", R"({"commands": {"W?": "12.0"}})");
  Write("r\u00E9gistres", "DL=A\n");
  Perform(*DeviceOf(
              ReadDescription("{\"device\": \"radio_modem\", \"behind\": {\"A\": \"B\u00E4r \\u03A9.json\"}, "
                              "\"nonvolatile\": \"r\u00E9gistres\"}",
                              "d", folder_)),
          {{0, "W?\r", "12.0\r"}});
}

TEST(Examples, AllAreDescriptionsThatStandAlone) {
  for (const Example& example : Examples())
    EXPECT_EQ(MistakesIn(std::string(example.text), "/nowhere"), "") << example.kind;
  EXPECT_EQ(Examples().size(), 6U);
}

TEST(Examples, FilesForLines_AnswerAsTheySay) {
  const auto perform = [](const std::string& name, const std::vector<Scene>& scenes) {
    SCOPED_TRACE(name);
    Perform(*DeviceOf(LoadDescription(KESP_EXAMPLES "/" + name + ".json")), scenes);
  };
  perform("bench-top-controller",
          {{0, "*IDN?\r*VER\rt\rMEAS?\rMEAS?\rOUT?\rUNIT?\rSTAT?\rALARM?\rCAL?\rRANGE?\rWHAT\rWHAT?\r",
            "KESP,BT200,SIM20417,2.3\r2.3\r+021.5\r+021.48\r+021.50\r037.2\rC\r2\r0\r"},
           {600, "", "2024-03-11\r-040.00,"},
           {620, "", "+180.00\rERR 02 UNKNOWN COMMAND\rERR 02 UNKNOWN COMMAND\r"},
           {620, "SETP 25.0\r*RST\r*CLS\rLOG?\r", "+021.48\r\n+021.50\r\n+021.53\r\n"}});
  perform(
      "serial-controller",
      {{0, "*IDN?\r*VER\rt\rMEAS?\rMEAS?\rX?\rX\r",
        "KESP,SC300,SIM30118,1.4\r\n1.4\r\n+021.5\r\n+021.48\r\n+021.50\r\nERROR 113,Undefined query\r\n"}});
  perform("redirector", {{0, "*VER\rt\r*IDN?\r", "1.1\r21.5\rKESP,RD100,S"}, {15, "", "IM40220,1.1\r"}});
  perform("omega-controller", {{0,
                                "\x04"
                                "0011PV\x05\r",
                                "\x02PV0021.5\x03\x1D\r\n"}});
  perform("radio-modem", {{0, "MEAS?\r", "21.5\r"},
                          {1000, "+++", ""},
                          {1050, "ATDL1A\rATCN\r*IDN?\r", "OK\rOK\rOK\rKESP,RB20,SIM50026,1.0\r"}});
  perform("port-switch", {{0,
                           "\x1B\x02"
                           "A\r*IDN?\r",
                           "KESP,SC300,SIM30118,1.4\r\n"},
                          {0,
                           "\x1B\x02"
                           "B\r*IDN?\r",
                           "KESP,PB50,SIM60002,1.0\r"},
                          {0,
                           "\x1B\x02"
                           "D\r\x04"
                           "0022\x02SL5\x03\x29",
                           "\x06\r\n"},
                          {0, "\x1B\x02\x04*IDN?\r", ""}});
}

}  // namespace
}  // namespace kesp::simulator
