// Descriptions for the simulator, made of traces of each transport and of single exchanges.
#include "console/device_from_trace.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/exchanges.h"
#include "console/file_pieces.h"
#include "console/trace_reader.h"

namespace kesp::console {
namespace {

using nlohmann::json;
using Kind = Exchange::Kind;

// Each trace is of the same conversation with the same instrument.
DeviceFromTrace::Made MadeOf(const std::string& trace) {
  FileOnDisk file(std::string(KESP_TRACES) + "/" + trace);
  TraceReader reader(file);
  DeviceFromTrace device;
  Exchanges exchanges([&](const Exchange& exchange) { device.Add(exchange); });
  const auto add = [&](const TraceLine& line) { exchanges.Add(line); };
  while (reader.Read(add) == TraceReader::Outcome::kMore) {
  }
  reader.HandOutLast(TraceLines::Ending::kEnded, add);
  exchanges.End();
  return device.Make();
}

// An answer without the delays, which differ from trace to trace: these are checked to be at most that long.
json WithoutDelays(json answer, int most_ms) {
  if (answer.is_object() && answer.contains("cycle")) {
    for (json& turn : answer["cycle"]) turn = WithoutDelays(turn, most_ms);
  }
  if (!answer.is_array()) return answer;
  if (answer[0].contains("wait_ms")) {
    EXPECT_LE(answer[0]["wait_ms"], most_ms);
    answer.erase(0);
  }
  const bool is_plain = answer.size() == 1 && answer[0].size() == 1 && answer[0].contains("send");
  return is_plain ? json(answer[0]["send"]) : answer;
}

constexpr int kQuickMs = 100;

void ExpectAnswers(const json& commands, const json& temperatures) {
  EXPECT_EQ(WithoutDelays(commands["*IDN?"], kQuickMs), "KESP,OVEN,SIM00007,2.0");
  EXPECT_EQ(WithoutDelays(commands["T?"], kQuickMs), temperatures);
  EXPECT_GE(commands["SETTLE?"][0]["wait_ms"], 140);
  EXPECT_LE(commands["SETTLE?"][0]["wait_ms"], 400);
  EXPECT_EQ(commands["SETTLE?"][1], json({{"send", "100"}}));
  EXPECT_EQ(WithoutDelays(commands["UNIT?"], kQuickMs),
            "\xC2\xB0"
            "C");
  EXPECT_TRUE(commands["SP 30"].is_null());
  EXPECT_TRUE(commands["GONE?"].is_null());
}

const json kTemperatures = {{"cycle", {"21.4", "21.9", "22.3", "21.4"}}};

TEST(DeviceFromTrace, NetworkTrace_GivesTheInstrument) {
  const DeviceFromTrace::Made made = MadeOf("tcp.trace");
  const json device = json::parse(made.json);
  EXPECT_EQ(device["terminator"], "\r");
  EXPECT_EQ(device["reply_terminator"], "\r\n");
  EXPECT_FALSE(device.contains("line"));
  ExpectAnswers(device["commands"], kTemperatures);
  EXPECT_EQ(WithoutDelays(device["commands"]["CURVE?"], kQuickMs),
            json::parse(R"([{"send_hex": "23 33 00 FF 81 0D 0A"}])"));
  EXPECT_EQ(device["commands"].size(), 7U);
  EXPECT_TRUE(made.summary.starts_with("7 commands of tcp:127.0.0.1:")) << made.summary;
  EXPECT_TRUE(made.summary.ends_with(", from 10 exchanges")) << made.summary;
  EXPECT_TRUE(made.remarks.empty());
}

TEST(DeviceFromTrace, SerialTrace_GivesTheInstrumentAndItsLine) {
  const json device = json::parse(MadeOf("com.trace").json);
  EXPECT_EQ(device["line"], json::parse(R"({"baud": 9600, "parity": "N", "data_bits": 8, "stop_bits": 1})"));
  EXPECT_EQ(device["reply_terminator"], "\r\n");
  ExpectAnswers(device["commands"], kTemperatures);
  EXPECT_EQ(WithoutDelays(device["commands"]["CURVE?"], 400),
            json::parse(R"([{"send_hex": "23 33 00 FF 81 0D 0A"}])"));
}

TEST(DeviceFromTrace, GpibTrace_GivesADeviceOnABus) {
  const DeviceFromTrace::Made made = MadeOf("gpib.trace");
  const json device = json::parse(made.json);
  EXPECT_EQ(device["gpib"], json({{"primary", 5}}));
  EXPECT_EQ(device["terminator"], "\n");
  ExpectAnswers(device["commands"], kTemperatures);
  ASSERT_EQ(made.remarks.size(), 1U);
  EXPECT_NE(made.remarks[0].find("primary address"), std::string::npos);
  EXPECT_NE(made.remarks[0].find("nor the end of a command: 5 and a line feed"), std::string::npos);
}

Exchange Heard(const std::string& command, const std::string& received, std::uint32_t delay_ms) {
  Exchange exchange;
  exchange.kind = Kind::kQuery;
  exchange.place = "tcp:10.0.0.5:10001";
  exchange.command = command;
  exchange.was_sent = true;
  exchange.received = received;
  exchange.is_whole = true;
  exchange.delay_ms = delay_ms;
  return exchange;
}

json CommandsOf(const std::vector<Exchange>& exchanges) {
  DeviceFromTrace device;
  for (const Exchange& exchange : exchanges) device.Add(exchange);
  return json::parse(device.Make().json)["commands"];
}

TEST(DeviceFromTrace, SameReply_HasTheMedianOfItsDelays) {
  EXPECT_EQ(CommandsOf({Heard("A", "1\r", 900), Heard("A", "1\r", 10), Heard("A", "1\r", 12)})["A"],
            json::parse(R"([{"wait_ms": 12}, {"send": "1"}])"));
}

TEST(DeviceFromTrace, OtherReplies_ComeInTheirOrder_EachWithItsDelay) {
  EXPECT_EQ(CommandsOf({Heard("A", "1\r", 0), Heard("A", "2\r", 7), Heard("A", "1\r", 0)})["A"],
            json::parse(R"({"cycle": ["1", [{"wait_ms": 7}, {"send": "2"}], "1"]})"));
}

TEST(DeviceFromTrace, RepliesThatComeRoundAgain_StandOnce) {
  EXPECT_EQ(CommandsOf({Heard("A", "1\r", 0), Heard("A", "2\r", 5), Heard("A", "1\r", 0),
                        Heard("A", "2\r", 7), Heard("A", "1\r", 0)})["A"],
            json::parse(R"({"cycle": ["1", [{"wait_ms": 7}, {"send": "2"}]]})"));
}

TEST(DeviceFromTrace, ReplyThatCameOnlySometimes_IsMissingInItsTurn) {
  Exchange silent = Heard("A", "", 0);
  silent.received.reset();
  silent.has_failed = true;
  EXPECT_EQ(CommandsOf({Heard("A", "1\r", 0), silent, silent})["A"],
            json::parse(R"({"cycle": ["1", null, null]})"));
}

TEST(DeviceFromTrace, LineEnds_AreThoseOfTheReplies) {
  EXPECT_EQ(CommandsOf({Heard("A", "1\r\n", 0), Heard("B", "2\r\n", 0), Heard("C", "3\r", 0),
                        Heard("D", "4\n5\r\n", 0)}),
            json::parse(R"({"A": "1", "B": "2", "C": [{"send": "3", "end": "\r"}], "D": "4\n5"})"));
}

TEST(DeviceFromTrace, HalfAReply_HasNoEnd) {
  Exchange half = Heard("A", "12.", 5);
  half.is_whole = false;
  half.has_failed = true;
  EXPECT_EQ(CommandsOf({Heard("B", "1\r", 0), half})["A"],
            json::parse(R"([{"wait_ms": 5}, {"send": "12.", "end": ""}])"));
}

TEST(DeviceFromTrace, InstrumentThatHungUp_HangsUp) {
  Exchange closed = Heard("A", "", 0);
  closed.received.reset();
  closed.has_failed = closed.was_closed = true;
  EXPECT_EQ(CommandsOf({closed})["A"], json::parse(R"([{"close": true}])"));
}

std::string RefusalOf(const DeviceFromTrace& device) {
  try {
    device.Make();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

// Clients write their own line ends behind a command, though the library does.
TEST(DeviceFromTrace, LineEndsOfTheClient_AreNotPartOfTheCommand) {
  EXPECT_EQ(CommandsOf({Heard("A\r", "1\r", 0), Heard("B\r\n", "2\r", 0), Heard("C\n", "3\r", 0),
                        Heard("D\n\r", "4\r", 0)}),
            json::parse(R"({"A": "1", "B": "2", "C\n": "3", "D\n": "4"})"));
  Exchange serial = Heard("A\r", "1\r", 0);
  serial.place = "com3";
  serial.frame = "A\r\r";
  EXPECT_EQ(CommandsOf({serial}), json::parse(R"({"A": "1"})"));
  Exchange on_bus = Heard("A\r\n", "1\n", 0);
  on_bus.place = "gpib";
  Exchange other = on_bus;
  other.command = "B\r";
  EXPECT_EQ(CommandsOf({on_bus, other}), json::parse(R"({"A": "1", "B": "1"})"));
}

TEST(DeviceFromTrace, SeveralCommandsInOne_AreLeftOut) {
  DeviceFromTrace device;
  device.Add(Heard("A\rB", "1\r", 0));
  EXPECT_EQ(RefusalOf(device),
            "the exchanges in the trace hold several commands in one, so nothing was written");
  device.Add(Heard("A\nB", "1\r", 0));
  const DeviceFromTrace::Made made = device.Make();
  EXPECT_EQ(json::parse(made.json)["commands"], json::parse(R"({"A\nB": "1"})"));
  EXPECT_EQ(made.remarks, (std::vector<std::string>{"left out: 1 exchange with several commands in one"}));
}

TEST(DeviceFromTrace, SettingsThatAreNone_AreLeftOut) {
  const auto line_of = [](const char* settings) {
    Exchange exchange = Heard("A", "1\r", 0);
    exchange.settings = settings;
    DeviceFromTrace device;
    device.Add(exchange);
    return json::parse(device.Make().json).value("line", json());
  };
  EXPECT_EQ(line_of("9600,E,7,2"),
            json::parse(R"({"baud": 9600, "parity": "E", "data_bits": 7, "stop_bits": 2})"));
  EXPECT_EQ(line_of("150,N,4,1.5"), json::parse(R"({"baud": 150, "parity": "N"})"));
  for (const char* settings :
       {"<unknown>,N,8,1", "9600,I,8,1", "9600,\xFF,8,1", "9600,,8,1", "9601,N,8,1", "9600,N,9,1"})
    EXPECT_TRUE(line_of(settings).is_null()) << settings;
}

TEST(DeviceFromTrace, Update_TellsNothingOfTheAnswer) {
  Exchange update = Heard("A", "", 0);
  update.kind = Kind::kUpdate;
  update.received.reset();
  EXPECT_TRUE(CommandsOf({update})["A"].is_null());
  EXPECT_EQ(CommandsOf({update, Heard("A", "1\r", 0), update})["A"], "1");
}

TEST(DeviceFromTrace, QueryWhoseEndIsNotTold_IsLeftOut) {
  Exchange unfinished = Heard("A", "", 0);
  unfinished.received.reset();
  unfinished.is_unfinished = unfinished.has_failed = true;
  DeviceFromTrace device;
  for (const Exchange& exchange : {Heard("A", "1\r", 0), unfinished}) device.Add(exchange);
  const DeviceFromTrace::Made made = device.Make();
  EXPECT_EQ(json::parse(made.json)["commands"]["A"], "1");
  EXPECT_EQ(made.remarks,
            std::vector<std::string>{"left out: 1 exchange of which the trace does not tell the end"});
}

TEST(DeviceFromTrace, CommandThatEndsInAStar_IsRemarkedOn) {
  DeviceFromTrace device;
  device.Add(Heard("A*", "1\r", 0));
  device.Add(Heard("*IDN?", "1\r", 0));
  EXPECT_EQ(device.Make().remarks,
            std::vector<std::string>{"\"A*\" ends in \"*\", so it stands for all commands that begin so"});
}

TEST(DeviceFromTrace, SeveralInstruments_TheOneWithMostExchangesIsTaken) {
  Exchange other = Heard("B", "1\r", 0);
  other.place = "tcp:10.0.0.6:10001";
  DeviceFromTrace device;
  for (const Exchange& exchange : {Heard("A", "1\r", 0), other, Heard("A", "1\r", 0)}) device.Add(exchange);
  const DeviceFromTrace::Made made = device.Make();
  EXPECT_EQ(made.summary, "1 command of tcp:10.0.0.5:10001, from 2 exchanges");
  EXPECT_EQ(made.remarks, std::vector<std::string>{"left out: 1 exchange with tcp:10.0.0.6:10001"});
}

TEST(DeviceFromTrace, WithoutAUsableExchange_ThereIsNoDevice) {
  Exchange nameless = Heard("A", "1\r", 0);
  nameless.command.reset();
  Exchange not_sent = Heard("A", "1\r", 0);
  not_sent.was_sent = false;
  DeviceFromTrace device;
  device.Add(nameless);
  device.Add(not_sent);
  EXPECT_EQ(RefusalOf(device),
            "no exchange in the trace tells its command and its end, so nothing was written");
}

TEST(DeviceFromTrace, ManyAnswersToOneCommand_OnlyTheFirstAreKept) {
  DeviceFromTrace device;
  for (int i = 0; i < 1500; ++i) device.Add(Heard("A", std::to_string(i) + "\r", 0));
  const DeviceFromTrace::Made made = device.Make();
  EXPECT_EQ(json::parse(made.json)["commands"]["A"]["cycle"].size(), 1000U);
  EXPECT_EQ(made.remarks, std::vector<std::string>{"left out: 500 answers, of each command those past 1000"});
}

}  // namespace
}  // namespace kesp::console
