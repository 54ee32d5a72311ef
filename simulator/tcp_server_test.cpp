// The carrier over real loopback connections.
#include "simulator/tcp_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <system_error>
#include <vector>

#include "simulator/loopback_client.h"
#include "simulator/served_instrument.h"

namespace kesp::simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(Listen, PortZero_PicksDifferentPortsInTheRange) {
  asio::io_context io;
  std::vector<asio::ip::tcp::acceptor> acceptors;
  std::vector<std::uint16_t> ports;
  for (int i = 0; i < 20; ++i) {
    acceptors.push_back(Listen(io, "127.0.0.1", 0));
    ports.push_back(acceptors.back().local_endpoint().port());
    EXPECT_GE(ports.back(), 20000);
    EXPECT_LE(ports.back(), 32000);
  }
  std::sort(ports.begin(), ports.end());
  EXPECT_EQ(std::adjacent_find(ports.begin(), ports.end()), ports.end());
}

TEST(Listen, GivenPort_IsTakenOnceOnly) {
  asio::io_context io;
  asio::ip::tcp::acceptor first = Listen(io, "127.0.0.1", 0);
  const std::uint16_t port = first.local_endpoint().port();
  EXPECT_THROW(Listen(io, "127.0.0.1", port), std::system_error);
  first.close();
  EXPECT_EQ(Listen(io, "127.0.0.1", port).local_endpoint().port(), port);
}

TEST(Listen, ForeignAddress_Throws) {
  asio::io_context io;
  EXPECT_THROW(Listen(io, "192.0.2.1", 0), std::system_error);
  EXPECT_THROW(Listen(io, "192.0.2.1", 20001), std::system_error);
}

TEST(TcpServer, BuiltInInstrument_ConversesAndLogs) {
  ServedInstrument served(BuiltInInstrument(), Clients::kOne);
  {
    LoopbackClient client(served.port());
    EXPECT_EQ(client.Ask("*IDN?"), "KESP,7100,SIM00001,1.0");
    EXPECT_EQ(client.Ask("WHAT?"), "ERROR 113,Undefined query");
    client.Send("SET 5\rt\r");
    EXPECT_EQ(client.ReadTo("\r").bytes, "21.5\r");
  }
  served.WaitForEnd();
  const std::string log = served.Stop();
  EXPECT_EQ(log.rfind("- #1 connected from 127.0.0.1:", 0), 0U) << log;
  EXPECT_NE(log.find("- #1 command \"SET 5\"\n"
                     "- #1 command \"t\"\n"
                     "- #1 reply \"21.5\\r\" (5 bytes, 1 piece)\n"
                     "- #1 closed by the client\n"),
            std::string::npos)
      << log;
}

TEST(TcpServer, CommandInPieces_IsAnsweredWhenItsTerminatorHasCome) {
  ServedInstrument served(BuiltInInstrument());
  LoopbackClient client(served.port());
  client.Send("*ID");
  EXPECT_EQ(client.ReadTo("\r", milliseconds(50)).end, Heard::kDeadline);
  client.Send("N?\r*V");
  EXPECT_EQ(client.ReadTo("\r").bytes, "KESP,7100,SIM00001,1.0\r");
  client.Send("ER\r");
  EXPECT_EQ(client.ReadTo("\r").bytes, "1.0\r");
}

TEST(TcpServer, ManyClients_AreServedAtOnce) {
  ServedInstrument served(ReadInstrument(
      R"({"commands": {"SLOW?": [{"wait_ms": 400}, {"send": "slow"}], "FLOOD?": [{"flood_ms": 60000}],
          "NOW?": [{"send": "now"}]}})"));
  LoopbackClient flooded(served.port());  // and never reads
  flooded.Send("FLOOD?\r");
  std::vector<std::unique_ptr<LoopbackClient>> clients;
  const auto start = steady_clock::now();
  for (int i = 0; i < 20; ++i) {
    clients.push_back(std::make_unique<LoopbackClient>(served.port()));
    clients.back()->Send("SLOW?\r");
  }
  LoopbackClient quick(served.port());
  EXPECT_EQ(quick.Ask("NOW?"), "now");
  for (const auto& client : clients) EXPECT_EQ(client->ReadTo("\r").bytes, "slow\r");
  // One after the other they would take eight seconds.
  EXPECT_LT(steady_clock::now() - start, milliseconds(6000));
}

TEST(TcpServer, OnConnect_SpeaksFirst) {
  ServedInstrument served(ReadInstrument(
      R"({"on_connect": {"cycle": [[{"send": "READY"}], [{"close": true}], [{"reset": true}]]}})"));
  EXPECT_EQ(LoopbackClient(served.port()).ReadTo("\r").bytes, "READY\r");
  EXPECT_EQ(LoopbackClient(served.port()).ReadToEnd().end, Heard::kClosed);
  EXPECT_EQ(LoopbackClient(served.port()).ReadToEnd().end, Heard::kReset);
}

TEST(TcpServer, Close_DeliversTheReplyAlsoWhenMoreInputWaits) {
  ServedInstrument served(ReadInstrument(
      R"({"commands": {"WAIT": [{"send": "w"}, {"wait_ms": 1000}], "BYE": [{"repeat": "x", "bytes": 100000}, {"close": true}]}})"));
  LoopbackClient client(served.port());
  client.Send("WAIT\rBYE\r");
  EXPECT_EQ(client.ReadTo("\r").bytes, "w\r");
  client.Send(std::string(50'000, 'y'));  // not read by the instrument before it closes
  const Reply reply = client.ReadToEnd();
  EXPECT_EQ(reply.end, Heard::kClosed);
  EXPECT_EQ(reply.bytes.size(), 100'001U);
}

TEST(TcpServer, Trickle_TakesAtLeastItsGaps) {
  ServedInstrument served(
      ReadInstrument(R"({"commands": {"T?": [{"trickle": "ABCDEFGHI", "gap_ms": 15}]}})"));
  LoopbackClient client(served.port());
  const auto start = steady_clock::now();
  client.Send("T?\r");
  EXPECT_EQ(client.ReadTo("C").bytes, "ABC");
  EXPECT_EQ(client.ReadTo("\r").bytes, "DEFGHI\r");
  EXPECT_GE(steady_clock::now() - start, milliseconds(9 * 15));
}

TEST(TcpServer, Flood_EndsAfterItsTimeAlsoWhenNobodyReads) {
  ServedInstrument served(
      ReadInstrument(R"({"commands": {"F?": [{"flood_ms": 200}, {"send": "end"}, {"close": true}]}})"),
      Clients::kOne);
  LoopbackClient client(served.port());
  client.Send("F?\r");
  EXPECT_EQ(client.ReadTo("9", milliseconds(5000)).bytes, "0123456789");
  const Reply rest = client.ReadToEnd(milliseconds(20'000));
  EXPECT_EQ(rest.end, Heard::kClosed);
  ASSERT_GT(rest.bytes.size(), 1'000'000U);
  EXPECT_EQ(rest.bytes.find('\r'), rest.bytes.size() - 1);
  EXPECT_EQ(rest.bytes.substr(rest.bytes.size() - 4), "end\r");
}

TEST(TcpServer, Flood_EndsWhenTheClientLeaves) {
  ServedInstrument served(ReadInstrument(R"({"commands": {"F?": [{"flood_ms": 3600000}]}})"), Clients::kOne);
  {
    LoopbackClient client(served.port());
    client.Send("F?\r");
    EXPECT_EQ(client.ReadTo("9").end, Heard::kBytes);
  }
  const auto start = steady_clock::now();
  served.WaitForEnd();
  EXPECT_LT(steady_clock::now() - start, milliseconds(10'000));
}

TEST(TcpServer, OneClient_RefusesTheNextAndEndsWithIt) {
  ServedInstrument served(BuiltInInstrument(), Clients::kOne);
  {
    LoopbackClient client(served.port());
    EXPECT_EQ(client.Ask("t"), "21.5");
    EXPECT_THROW(LoopbackClient(served.port()), std::system_error);
  }
  served.WaitForEnd();
}

TEST(TcpServer, StopWithClientsInEveryState_IsClean) {
  ServedInstrument served(ReadInstrument(
      R"({"commands": {"W?": [{"wait_ms": 3600000}], "F?": [{"flood_ms": 3600000}],
          "R?": [{"repeat": "x", "bytes": 1073741824}]}})"));
  LoopbackClient idle(served.port());
  std::vector<std::unique_ptr<LoopbackClient>> clients;
  for (const char* command : {"W?\r", "F?\r", "R?\r"}) {
    clients.push_back(std::make_unique<LoopbackClient>(served.port()));
    clients.back()->Send(command);
  }
  EXPECT_EQ(clients[1]->ReadTo("9").end, Heard::kBytes);
  EXPECT_EQ(clients[2]->ReadTo("x").end, Heard::kBytes);
  served.Stop();
}

}  // namespace
}  // namespace kesp::simulator
