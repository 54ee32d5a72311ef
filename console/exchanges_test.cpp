// Lines of a trace gathered into exchanges, shown as the table and the comma-separated values show them.
#include "console/exchanges.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "console/exchange_text.h"
#include "console/trace_bytes.h"

namespace kesp::console {
namespace {

using namespace std::string_literals;

struct Step {
  std::int32_t counter;
  std::string message;
};

std::vector<Exchange> ExchangesOf(const std::vector<Step>& steps) {
  std::vector<Exchange> found;
  Exchanges exchanges([&](const Exchange& exchange) { found.push_back(exchange); });
  for (const Step& step : steps) exchanges.Add({"22.11.2026 06:54:30", step.counter, step.message, false});
  exchanges.End();
  return found;
}

// "MS PLACE COMMAND REPLY" of each, without the padding.
std::vector<std::string> ShownOf(const std::vector<Step>& steps) {
  std::vector<std::string> shown;
  for (const Exchange& exchange : ExchangesOf(steps)) {
    const std::string line = TableLine(exchange, 0).substr(22);
    std::string text;
    for (const char character : line) {
      if (character != '\n' && !(character == ' ' && (text.empty() || text.back() == ' '))) text += character;
    }
    shown.push_back(text);
  }
  return shown;
}

using Shown = std::vector<std::string>;

const std::vector<Step> kNetworkQuery = {
    {-10, "Beginning Query()... (command: T?)"},
    {-9, "TCP: Initialize()"},
    {-9, "Initialize()"},
    {-9, "Check IP Address..."},
    {-9, "Check Port..."},
    {-9, "Connecting to 10.0.0.5 on port 10001..."},
    {-8, "Waiting for connection to be established..."},
    {-8, "Connect (10.0.0.5:10001)"},
    {-8, "Initialize() Done..."},
    {-7, "TCP: WriteLine(T?)"},
    {-7, "Send Progress (10.0.0.5:10001) - Sent: 3 Remaining: 0"},
    {-6, "Send complete (10.0.0.5:10001)"},
    {-6, "TCP: ReadLine()"},
    {1, "DataArrival (10.0.0.5:10001) Bytes: 3"},
    {1, "Socket Data arrived: <21.> (length: 3  last byte: 46 EOS: 13 EOS?: False)"},
    {5, "DataArrival (10.0.0.5:10001) Bytes: 6"},
    {5, "Socket Data arrived: <21.4\r\n> (length: 6  last byte: 10 EOS: 13 EOS?: True)"},
    {5, "TCP: result- 21.4"},
    {5, "TCP: Uninitialize()"},
    {6, "Exiting Query()...(command: T?)"},
};

TEST(Exchanges, NetworkQuery_IsOneLine) {
  EXPECT_EQ(ShownOf(kNetworkQuery), Shown{"16 tcp:10.0.0.5:10001 T? 21.4"});
  const Exchange exchange = ExchangesOf(kNetworkQuery).front();
  EXPECT_EQ(exchange.kind, Exchange::Kind::kQuery);
  EXPECT_EQ(exchange.received, "21.4\r\n");
  EXPECT_EQ(exchange.delay_ms, 11U);
  EXPECT_TRUE(exchange.is_whole);
}

TEST(Exchanges, TimeoutOverTheNetwork_TellsSourceAndWhatCame) {
  std::vector<Step> steps(kNetworkQuery.begin(), kNetworkQuery.begin() + 15);
  steps.push_back(
      {3000, "TCP: ** ReadLine() Error info: Source- [CKespTCP - ReadLine()]  Description- Timeout **"});
  steps.push_back({3000, "TCP: Uninitialize()"});
  steps.push_back({3001, "Exiting Query()...(command: T?)"});
  EXPECT_EQ(ShownOf(steps),
            Shown{"3011 tcp:10.0.0.5:10001 T? FAILED: Timeout ([CKespTCP - ReadLine()]); received: 21."});
  EXPECT_FALSE(ExchangesOf(steps).front().is_whole);
}

TEST(Exchanges, InstrumentThatHangsUp_IsTold) {
  std::vector<Step> steps(kNetworkQuery.begin(), kNetworkQuery.begin() + 13);
  steps.push_back({20, "Close (10.0.0.5:10001)"});
  steps.push_back(
      {20, "TCP: ** ReadLine() Error info: Source- [CKespTCP - ReadLine()]  Description- No connection **"});
  steps.push_back({20, "Exiting Query()...(command: T?)"});
  EXPECT_TRUE(ExchangesOf(steps).front().was_closed);
}

TEST(Exchanges, RefusedConnection_WasNotSent) {
  const std::vector<Step> steps = {
      {1, "Beginning Update()...(command: SP 30)"},
      {1, "TCP: Initialize()"},
      {1, "Connecting to 10.0.0.5 on port 10001..."},
      {9, "TCP: Initialize failed!! (8002-Timeout - unable to establish connection)"},
      {9,
       "TCP: ** Initialize() Error info: Source- [CKespTCP - Initialize()]  Description- Timeout - unable to "
       "establish connection **"},
      {9, "TCP: Uninitialize()"},
      {9, "Exiting Update()...(command: SP 30)"},
  };
  EXPECT_EQ(ShownOf(steps),
            Shown{"8 tcp:10.0.0.5:10001 SP 30 FAILED: Timeout - unable to establish connection "
                  "([CKespTCP - Initialize()])"});
  EXPECT_FALSE(ExchangesOf(steps).front().was_sent);
}

const std::vector<Step> kSerialQuery = {
    {1, "Beginning Query()... (command: T?)"},
    {1, "RS-232: OpenPort()"},
    {1, "Opening COM port 3 with settings 9600,N,8,1"},
    {2, "RS-232: WriteLine(T?,,)"},
    {2, "WriteLine..."},
    {2, "Clearing buffers..."},
    {2, "Sending 'T?\r' on COM port 3"},
    {3, "RS-232: ReadLine()"},
    {3, "ReadLine..."},
    {9, "Received '21.4\r\n' (raw) on COM3(Asc: 50 49 46 52 13 10 )"},
    {9, "Received '21.4' (filtered) on COM3"},
    {9, "RS-232: result- 21.4"},
    {9, "RS-232: ClosePort()"},
    {9, "Closing COM port 3"},
    {9, "Closed COM port 3"},
    {10, "Exiting Query()...(command: T?)"},
};

TEST(Exchanges, SerialQuery_IsOneLine) {
  EXPECT_EQ(ShownOf(kSerialQuery), Shown{"9 com3@9600,N,8,1 T? 21.4"});
  const Exchange exchange = ExchangesOf(kSerialQuery).front();
  EXPECT_EQ(exchange.received, "21.4\r\n");
  EXPECT_EQ(exchange.frame, "T?\r");
  EXPECT_EQ(exchange.delay_ms, 7U);
}

TEST(Exchanges, ReplyWithoutLineFeed_HasNoDelay) {
  std::vector<Step> steps = kSerialQuery;
  steps[9] = {3009, "Received '21.4\r' (raw) on COM3(Asc: 50 49 46 52 13 )"};
  EXPECT_FALSE(ExchangesOf(steps).front().delay_ms);
}

TEST(Exchanges, RadioModem_ItsOwnLinesAreNotTheInstruments) {
  std::vector<Step> steps = kSerialQuery;
  steps.insert(steps.begin() + 3, {{1, "WriteLine..."},
                                   {1, "Sending '+++' on COM port 3"},
                                   {1, "Waiting for 'OK'"},
                                   {1, "Received 'OK'"},
                                   {1, "ReadLine..."},
                                   {1, "Received '12\r' (raw) on COM3(Asc: 49 50 13 )"}});
  for (Step& step : steps) {
    if (!step.message.starts_with("RS-232: ")) step.message += " (RF address 12)";
  }
  steps.front().message = "Beginning Query()... (command: T?)";
  steps.back().message = "Exiting Query()...(command: T?)";
  EXPECT_EQ(ShownOf(steps), Shown{"9 com3@9600,N,8,1 T? 21.4"});
  EXPECT_EQ(ExchangesOf(steps).front().frame, "T?\r");
}

TEST(Exchanges, OmegaAddress_IsTaken) {
  std::vector<Step> steps = kSerialQuery;
  steps[3].message = "RS-232: WriteLine(PV,01,)";
  EXPECT_EQ(ExchangesOf(steps).front().omega_address, "01");
}

TEST(Exchanges, BinaryQueryAtAComPort_BeginsWithItsOpening) {
  const std::vector<Step> steps = {
      {1, "RS-232: OpenPort()"},
      {1, "Opening COM port 3 with settings 9600,N,8,1"},
      {1, "RS-232: WriteLine(C?,,)"},
      {1, "Sending 'C?\r' on COM port 3"},
      {1, "RS-232: ReadLineBinary()"},
      {200, "Received '#\0\xFF\r\n' (raw) on COM3"s},
      {201, "RS-232: ClosePort()"},
      {201, "Closing COM port 3"},
      {202, "Closed COM port 3"},
      {300, "RS-232: OpenPort()"},
      {300, "Opening COM port 3 with settings 9600,N,8,1"},
      {301, "RS-232: ** OpenPort() open failed (8012 - Invalid port number) **"},
      {301, "RS-232: ** OpenPort() Error info: Source- S  Description- Invalid port number **"},
  };
  EXPECT_EQ(ShownOf(steps), (Shown{"200 com3@9600,N,8,1 C? #\\x00\xC3\xBF",
                                   "1 com3@9600,N,8,1 FAILED: Invalid port number (S)"}));
  const Exchange exchange = ExchangesOf(steps).front();
  EXPECT_EQ(exchange.kind, Exchange::Kind::kBinaryQuery);
  EXPECT_EQ(exchange.received, "#\0\xFF\r\n"s);
  EXPECT_FALSE(exchange.delay_ms);
}

TEST(Exchanges, PortThatDoesNotClose_IsNoFailureOfTheQuery) {
  std::vector<Step> steps = kSerialQuery;
  steps.insert(steps.end() - 1, {9, "RS-232: ** ClosePort() Error info: Source- S  Description- D **"});
  EXPECT_FALSE(ExchangesOf(steps).front().has_failed);
}

TEST(Exchanges, GpibQuery_IsOneLine) {
  const std::vector<Step> steps = {
      {1, "Beginning Query()... (command: T?)"},
      {1, "IEEE: Initialize()"},
      {1, "Initialize()"},
      {1, "Check Board Index..."},
      {1, "ibdev()"},
      {2, "Initialize() Done..."},
      {2, "IEEE: WriteLine(T?)"},
      {3, "IEEE: ReadLine()"},
      {8, "IEEE: result- 21.4\n"},
      {8, "IEEE: Uninitialize()"},
      {9, "Exiting Query()...(command: T?)"},
  };
  EXPECT_EQ(ShownOf(steps), Shown{"8 gpib T? 21.4"});
  EXPECT_EQ(ExchangesOf(steps).front().received, "21.4\n");
  EXPECT_EQ(ExchangesOf(steps).front().delay_ms, 6U);
}

TEST(Exchanges, TransportsOfTheirOwn_AreCalls) {
  const std::vector<Step> steps = {
      {1, "Initialize()"},
      {1, "Connecting to 10.0.0.5 on port 10001..."},
      {1, "Connect (10.0.0.5:10001)"},
      {1, "Initialize() Done..."},
      {2, "Send Progress (10.0.0.5:10001) - Sent: 6 Remaining: 0"},
      {2, "Send complete (10.0.0.5:10001)"},
      {5, "DataArrival (10.0.0.5:10001) Bytes: 4"},
      {5, "Socket Data arrived: <1.0\r> (length: 4  last byte: 13 EOS: 13 EOS?: True)"},
      {9, "Send Progress (10.0.0.5:10001) - Sent: 3 Remaining: 0"},
      {9, "Send complete (10.0.0.5:10001)"},
      {20, "Connecting to 10.0.0.6 on port 10001..."},
      {3020, "Connection timeout..."},
      {3020, "Retrying...(State: 6)"},
      {3020, "Connecting to 10.0.0.6 on port 10001..."},
      {6020, "Connection timeout..."},
      {6030, "Opening COM port 3 with settings 19200,E,7,1"},
      {6030, "WriteLine..."},
      {6031, "Sending '*IDN?\r' on COM port 3"},
      {6031, "ReadLine..."},
      {7000, "Closing COM port 3"},
      {7000, "Closed COM port 3"},
      {7001, "Initialize()"},
      {7001, "Check Board Index..."},
      {7001, "Error ibdev()- no driver"},
  };
  EXPECT_EQ(ShownOf(steps),
            (Shown{"3 tcp:10.0.0.5:10001 (6 bytes) 1.0", "0 tcp:10.0.0.5:10001 (3 bytes)",
                   "6000 tcp:10.0.0.6:10001 FAILED: Connection timeout...",
                   "1 com3@19200,E,7,1 *IDN? FAILED: No reply", "0 gpib FAILED: Error ibdev()- no driver"}));
}

TEST(Exchanges, Discovery_IsOneLineAndThenTheInstruments) {
  const std::vector<Step> steps = {
      {1, "Sending broadcast command to 255.255.255.255 on port 30718..."},
      {1, "Send Progress (255.255.255.255:30718) - Sent: 4 Remaining: 0"},
      {1, "Send complete (255.255.255.255:30718)"},
      {150, "DataArrival (255.255.255.255:30718) Bytes: 8"},
      {150, "Receiving from 10.88.0.12:30718"},
      {150, "Received buffer data: \x01\xF7"},
      {150, "Stored object for discovered device at 10.88.0.12"},
      {150, "Socket Data arrived: <\x01\xF7> (length: 2  last byte: 247 EOS: 13 EOS?: True)"},
      {1001, "UDP discovery successful. Found 1 devices."},
      {1001, "Connecting to 10.88.0.12 on port 10001..."},
      {1002, "Connect (10.88.0.12:10001)"},
      {1003, "Send Progress (10.88.0.12:10001) - Sent: 6 Remaining: 0"},
      {1003, "Send complete (10.88.0.12:10001)"},
      {1004, "Socket Data arrived: <KESP,7200\r> (length: 10  last byte: 13 EOS: 13 EOS?: True)"},
  };
  EXPECT_EQ(ShownOf(steps), (Shown{"1000 udp:255.255.255.255:30718 (broadcast) 1 instrument",
                                   "1 tcp:10.88.0.12:10001 (6 bytes) KESP,7200"}));
}

TEST(Exchanges, BroadcastWithoutAPort_HasNoPlace) {
  EXPECT_EQ(ShownOf({{1, "Sending broadcast command to nobody..."}}),
            (Shown{"0 (broadcast) FAILED: Nobody answered"}));
}

TEST(Exchanges, QueryThatAnotherInterrupts_CountsAsFailed) {
  std::vector<Step> steps(kNetworkQuery.begin(), kNetworkQuery.begin() + 13);
  steps.insert(steps.end(), kSerialQuery.begin(), kSerialQuery.end());
  EXPECT_EQ(ShownOf(steps), (Shown{"4 tcp:10.0.0.5:10001 T? FAILED: The trace does not tell the end",
                                   "9 com3@9600,N,8,1 T? 21.4"}));
}

TEST(Exchanges, TraceInUtf8_GivesTheBytesOfTheWire) {
  std::vector<Step> steps = kNetworkQuery;
  steps[16].message =
      "Socket Data arrived: <21 \xC2\xB0\xE2\x82\xAC\r> (length: 6  last byte: 13 EOS: 13 EOS?: True)";
  EXPECT_EQ(ExchangesOf(steps).front().received, "21 \xB0\x80\r");
  // A page in which a character was lost: the text stays, but is not taken for the bytes.
  steps[16].message = "Socket Data arrived: <21 ?\xFF\xFF> (length: 4  last byte: 13 EOS: 13 EOS?: True)";
  EXPECT_FALSE(ExchangesOf(steps).front().is_whole);
}

TEST(Exchanges, Pause_HandsOutABinaryReplyAtOnce) {
  std::vector<Exchange> found;
  Exchanges exchanges([&](const Exchange& exchange) { found.push_back(exchange); });
  exchanges.Add({"", 1, "RS-232: OpenPort()", false});
  exchanges.Pause();
  EXPECT_TRUE(found.empty());
  exchanges.Add({"", 2, "Received '12' (raw) on COM3", false});
  exchanges.Pause();
  EXPECT_EQ(found.size(), 1U);
}

TEST(Exchanges, Pause_WaitsForTheRestOfAReplyOverTheNetwork) {
  std::vector<Exchange> found;
  Exchanges exchanges([&](const Exchange& exchange) { found.push_back(exchange); });
  for (const char* message : {"TCP: Initialize()", "Connecting to 10.0.0.5 on port 10001...",
                              "TCP: WriteLine(C?)", "Send complete (10.0.0.5:10001)",
                              "Socket Data arrived: <12> (length: 2  last byte: 50 EOS: 13 EOS?: False)"})
    exchanges.Add({"", 1, message, false});
  exchanges.Pause();
  EXPECT_TRUE(found.empty());
  exchanges.Add({"", 2, "Socket Data arrived: <123\r> (length: 4  last byte: 13 EOS: 13 EOS?: True)", false});
  exchanges.Pause();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].received, "123\r");
}

TEST(Exchanges, QueryWhoseEndTheTraceDoesNotTell_IsUnfinished) {
  for (const std::ptrdiff_t cut : {13, 15}) {
    const std::vector<Step> steps(kNetworkQuery.begin(), kNetworkQuery.begin() + cut);
    EXPECT_TRUE(ExchangesOf(steps).front().is_unfinished) << cut;
  }
  EXPECT_FALSE(ExchangesOf(kNetworkQuery).front().is_unfinished);
  EXPECT_FALSE(ExchangesOf(kSerialQuery).front().is_unfinished);
}

TEST(ExchangeText, Csv_QuotesWhatNeedsIt) {
  Exchange exchange;
  exchange.kind = Exchange::Kind::kQuery;
  exchange.when = "22.11.2026 06:54:30";
  exchange.counter = -3;
  exchange.duration_ms = 12;
  exchange.place = "com3";
  exchange.settings = "9600,N,8,1";
  exchange.command = "SAY \"A\"";
  exchange.reply = "1,2\r\n\xFF";
  EXPECT_EQ(CsvLine(exchange),
            "22.11.2026 06:54:30,-3,12,query,\"com3@9600,N,8,1\",\"SAY \"\"A\"\"\","
            "\"1,2\\r\\n\xC3\xBF\",,\r\n");
}

TEST(ExchangeText, NarrowConsole_CutsTheLine) {
  Exchange exchange;
  exchange.reply = std::string(50, 'x');
  const std::string line = TableLine(exchange, 90);
  EXPECT_EQ(line.size(), 90U);
  EXPECT_TRUE(line.ends_with("x...\n"));
}

TEST(TraceBytes, Readable_ControlCharactersByTheirCodes) {
  EXPECT_EQ(Readable(std::string("a\\\t\r\n\0\x7F\xC2\xB0", 9)), "a\\\\\\t\\r\\n\\x00\\x7F\xC2\xB0");
}

TEST(TraceBytes, Readable_WhatIsNotUtf8_IsWindows1252) {
  EXPECT_EQ(Readable("21 \xB0 5 \x80, \xC3"), "21 \xC2\xB0 5 \xE2\x82\xAC, \xC3\x83");
  EXPECT_EQ(Readable("\x81\xFF"), "\\x81\xC3\xBF") << "the page has no letter there";
}

}  // namespace
}  // namespace kesp::console
