// Answers to discovery on the fake port.
#include "simulator/discovery_responder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <asio/co_spawn.hpp>
#include <asio/detached.hpp>
#include <asio/io_context.hpp>
#include <sstream>

#include "simulator/datagram_port_fake.h"
#include "simulator/description.h"

namespace kesp::simulator {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const asio::ip::udp::endpoint kClient(asio::ip::make_address("10.88.0.1"), 49152);

class DiscoveryResponderTest : public testing::Test {
 protected:
  // The log after these datagrams have been answered, without the times.
  std::string Answer(const std::string& discovery, const std::vector<std::string>& datagrams) {
    Instrument instrument(ReadInstrument(R"({"discovery": )" + discovery + "}"));
    std::ostringstream lines;
    EventLog log({&lines}, [] { return std::string("-"); });
    for (const std::string& bytes : datagrams) port_.input.push_back(ReceivedDatagram{bytes, kClient, {}});
    DiscoveryResponder responder(port_, instrument, log, manner_);
    asio::io_context io;
    asio::co_spawn(io, responder.Run(), asio::detached);
    io.poll();
    return lines.str();
  }

  std::size_t Count(const std::string& entry) const {
    return static_cast<std::size_t>(std::count(port_.record.begin(), port_.record.end(), entry));
  }

  DatagramPortFake port_;
  AnswerManner manner_;
};

const std::string kRequest(kDiscoveryRequest);

TEST_F(DiscoveryResponderTest, Request_IsAnsweredToItsSenderAndLogged) {
  EXPECT_EQ(Answer(R"([{"send": "here \u00F7"}])", {kRequest}),
            "- discovery from 10.88.0.1:49152\n"
            "- discovery reply to 10.88.0.1:49152 (6 bytes)\n");
  EXPECT_THAT(port_.record, ElementsAre(R"(- "here \xF7")"));
  EXPECT_THAT(port_.destinations, ElementsAre(kClient));
}

TEST_F(DiscoveryResponderTest, OtherDatagrams_AreLoggedOnly) {
  const std::string log = Answer(
      R"([{"send": "x"}])", {"", kRequest.substr(0, 3), kRequest + '\0', std::string("\x00\x01\x00\xF7", 4)});
  EXPECT_THAT(port_.record, IsEmpty());
  EXPECT_EQ(log,
            "- no discovery from 10.88.0.1:49152: \"\" (0 bytes)\n"
            "- no discovery from 10.88.0.1:49152: \"\\x00\\x01\\x00\" (3 bytes)\n"
            "- no discovery from 10.88.0.1:49152: \"\\x00\\x01\\x00\\xF6\\x00\" (5 bytes)\n"
            "- no discovery from 10.88.0.1:49152: \"\\x00\\x01\\x00\\xF7\" (4 bytes)\n");
}

TEST_F(DiscoveryResponderTest, Actions_AreCarriedOutInOrder) {
  Answer(R"([{"wait_ms": 40}, {"send": "1"}, {"wait_ms": 7}, {"send": ""}])", {kRequest});
  EXPECT_THAT(port_.record, ElementsAre("pause 40", "- \"1\"", "pause 7", "- \"\""));
}

TEST_F(DiscoveryResponderTest, Cycle_CountsRequestsOnly) {
  EXPECT_EQ(Answer(R"({"cycle": [[], [{"send": "2nd"}]]})", {kRequest, "no request", kRequest, kRequest}),
            "- discovery from 10.88.0.1:49152\n"
            "- no discovery from 10.88.0.1:49152: \"no request\" (10 bytes)\n"
            "- discovery from 10.88.0.1:49152\n"
            "- discovery reply to 10.88.0.1:49152 (3 bytes)\n"
            "- discovery from 10.88.0.1:49152\n");
  EXPECT_THAT(port_.record, ElementsAre("- \"2nd\""));
}

TEST_F(DiscoveryResponderTest, Addresses_EachSendTheDatagramOnceAndWaitTogether) {
  manner_.from = ReadAddressRange("10.88.4.1-10.88.4.3");
  EXPECT_EQ(Answer(R"([{"wait_ms": 5}, {"send": "A"}, {"send": "B"}])", {kRequest}).substr(0, 100),
            "- discovery from 10.88.0.1:49152\n"
            "- discovery reply to 10.88.0.1:49152 from 10.88.4.1 (1 byte)\n"
            "- disc");
  EXPECT_THAT(port_.record, ElementsAre("pause 5", "10.88.4.1 \"A\"", "10.88.4.2 \"A\"", "10.88.4.3 \"A\"",
                                        "10.88.4.1 \"B\"", "10.88.4.2 \"B\"", "10.88.4.3 \"B\""));
}

TEST_F(DiscoveryResponderTest, ManyAddresses_AreLoggedInOneLineAndLetOthersWork) {
  manner_.from = ReadAddressRange("10.88.4.1-10.88.7.232");
  EXPECT_EQ(Answer(R"([{"send": "0123456789"}])", {kRequest}),
            "- discovery from 10.88.0.1:49152\n"
            "- discovery replies to 10.88.0.1:49152 from 10.88.4.1-10.88.7.232: 1000 sent (10000 bytes), "
            "0 failed\n");
  EXPECT_EQ(port_.destinations.size(), 1000U);
  EXPECT_EQ(port_.record.front(), "10.88.4.1 \"0123456789\"");
  EXPECT_EQ(port_.record.back(), "10.88.7.232 \"0123456789\"");
  EXPECT_EQ(Count("pause 0"), 15U);
}

TEST_F(DiscoveryResponderTest, Storm_TakesDatagramsAndAddressesInTurn) {
  manner_.from = ReadAddressRange("10.88.4.1-10.88.4.3");
  Answer(R"([{"storm": [{"send": "A"}, {"send": "B"}], "datagrams": 5}])", {kRequest});
  EXPECT_THAT(port_.record, ElementsAre("10.88.4.1 \"A\"", "10.88.4.2 \"B\"", "10.88.4.3 \"A\"",
                                        "10.88.4.1 \"B\"", "10.88.4.2 \"A\""));
}

TEST_F(DiscoveryResponderTest, StormWithoutAddresses_HasItsNumber) {
  EXPECT_EQ(Answer(R"([{"storm": [{"send": "A"}, {"send": "BB"}], "datagrams": 501}])", {kRequest}),
            "- discovery from 10.88.0.1:49152\n"
            "- discovery replies to 10.88.0.1:49152: 501 sent (751 bytes), 0 failed\n");
  EXPECT_EQ(Count("- \"A\""), 251U);
  EXPECT_EQ(Count("- \"BB\""), 250U);
}

TEST_F(DiscoveryResponderTest, Rate_IsKeptByPauses) {
  manner_.rate = 2000;
  Answer(R"([{"storm": [{"send": "A"}], "datagrams": 100}])", {kRequest});
  EXPECT_EQ(Count("pause 10"), 4U);  // between five times twenty
  port_.record.clear();
  manner_.rate = 3;
  Answer(R"([{"storm": [{"send": "A"}], "datagrams": 3}])", {kRequest});
  EXPECT_THAT(port_.record, ElementsAre("- \"A\"", "pause 334", "- \"A\"", "pause 334", "- \"A\""));
}

TEST_F(DiscoveryResponderTest, FailureOfAnyDatagram_IsLoggedAndTheOthersGo) {
  manner_.from = ReadAddressRange("10.88.4.1-10.88.4.3");
  for (std::size_t failing = 0; failing < 3; ++failing) {
    port_ = DatagramPortFake();
    port_.error_of = [failing](std::size_t number) {
      return number == failing ? std::make_error_code(std::errc::network_unreachable) : std::error_code();
    };
    const std::string log = Answer(R"([{"send": "A"}])", {kRequest});
    EXPECT_EQ(port_.record.size(), 3U);
    const std::string address = "10.88.4." + std::to_string(failing + 1);
    EXPECT_NE(log.find("- discovery reply to 10.88.0.1:49152 from " + address +
                       " failed: Network is unreachable\n"),
              std::string::npos)
        << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 4) << log;
  }
}

TEST_F(DiscoveryResponderTest, ManyFailures_AreLoggedOnceAndCounted) {
  port_.error_of = [](std::size_t number) {
    return number % 2 == 1 ? std::make_error_code(std::errc::no_buffer_space) : std::error_code();
  };
  EXPECT_EQ(Answer(R"([{"storm": [{"send": "A"}], "datagrams": 40}])", {kRequest}),
            "- discovery from 10.88.0.1:49152\n"
            "- discovery reply to 10.88.0.1:49152 failed: No buffer space available\n"
            "- discovery replies to 10.88.0.1:49152: 20 sent (20 bytes), 20 failed\n");
}

TEST_F(DiscoveryResponderTest, ReceiveThatFails_IsNotTheEnd) {
  port_.input.push_back(ReceivedDatagram{{}, {}, std::make_error_code(std::errc::connection_refused)});
  EXPECT_EQ(Answer(R"([{"send": "A"}])", {kRequest}),
            "- cannot receive a discovery datagram: Connection refused\n"
            "- discovery from 10.88.0.1:49152\n"
            "- discovery reply to 10.88.0.1:49152 (1 byte)\n");
  EXPECT_THAT(port_.record, ElementsAre("pause 50", "- \"A\""));
}

}  // namespace
}  // namespace kesp::simulator
