// Unit tests of the walk over the instruments found: who is asked, in which order, and what is stored.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "network/kesp_tcp_discovery_fixture.h"

namespace kesp {
namespace {

using testing::AnyOf;
using testing::ElementsAre;

class CKespTCPIdentityTest : public KespTCPDiscoveryFixture {
 protected:
  // To whom connections were started, in order.
  Calls Connections() const {
    Calls all;
    for (const std::string& call : socket_->calls) {
      if (call.starts_with("Connect 10.")) all.push_back(call.substr(8));
    }
    return all;
  }
};

TEST_F(CKespTCPIdentityTest, Devices_AreAskedFromTheLastToTheFirst) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  PlaceInstrument(2, "KESP,7200,SIM2,1.0");
  PlaceInstrument(3, "KESP,7300,SIM3,1.0");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Connections(), (Calls{"10.0.0.3:10001", "10.0.0.2:10001", "10.0.0.1:10001"}));
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1", L"10.0.0.2/7200/SIM2", L"10.0.0.3/7300/SIM3"}));
  EXPECT_EQ(socket_->sent, std::string("\x00\x01\x00\xF6", 4) + "*IDN?\r*IDN?\r*IDN?\r");
  ExpectRestored();
  // Where the walk ended.
  EXPECT_EQ(tcp_->IPAddress(), L"10.0.0.1");
  EXPECT_EQ(tcp_->Port(), 10001);
}

TEST_F(CKespTCPIdentityTest, DuringTheWalk_TheSettingsAreThoseOfTheProbeAndNoAutoDetectUpdateIsRaised) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  events_.handlers[L"ConnectBegin"] = [&] {
    EXPECT_EQ(tcp_->TimeOutmSecs(), 1000);
    EXPECT_EQ(tcp_->IPType(), EIPType::ipStatic);
    EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckTCPProtocol);
    EXPECT_EQ(tcp_->Port(), 10001);
    EXPECT_EQ(tcp_->IPAddress(), L"10.0.0.1");
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Journal(),
            (Lines{L"AutoDetectBegin()", L"DataArrivalBegin(10)", L"DataArrivalEnd()", L"ConnectBegin()",
                   L"ConnectEnd()", L"DataArrivalBegin(19)", L"DataArrivalEnd()", L"AutoDetectEnd()"}));
  ExpectRestored();
}

TEST_F(CKespTCPIdentityTest, OtherProperties_AreNotTouchedAndItemsFromBeforeAreAskedToo) {
  const auto before = AddDevice(L"10.0.0.9");
  before->SetIPType(EIPType::ipDynamic);
  before->SetMACAddress(L"00:11");
  identities_[L"10.0.0.9"] = "KESP,7900,SIM9,1.0\r";
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.9/7900/SIM9", L"10.0.0.1/7100/SIM1"}));
  EXPECT_EQ(before->IPType(), EIPType::ipDynamic);
  EXPECT_EQ(before->MACAddress(), L"00:11");
  EXPECT_EQ(tcp_->Devices()->Item(2)->IPType(), EIPType::ipStatic);
  EXPECT_EQ(tcp_->Devices()->Item(2)->MACAddress(), L"");
}

TEST_F(CKespTCPIdentityTest, WhoGivesNoIdentity_KeepsWhatWasThereAndTheOthersGoOn) {
  const char* const unusable[] = {"KESP", "KESP,7300", "", "KESP,71\xC8,SIM1,1.0"};
  for (std::uint32_t n = 2; const char* const identity : unusable) PlaceInstrument(n++, identity);
  for (std::uint32_t n = 6; n <= 8; ++n) Answers(SenderAt(n));
  identities_[L"10.0.0.6"] = std::string(10'000'000, ',');  // without end; the next says nothing at all
  unreachable_ = {L"10.0.0.8"};
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  Lines expected;
  for (const wchar_t* const address : {L"", L"0.0.0.0", L"10.0.0.2", L"10.0.0.3", L"10.0.0.4", L"10.0.0.5",
                                       L"10.0.0.6", L"10.0.0.7", L"10.0.0.8"}) {
    const auto device = AddDevice(address);
    device->SetModel(L"old model");
    device->SetSerial(L"old serial");
    expected.push_back(address + std::wstring(L"/old model/old serial"));
  }
  expected.push_back(L"10.0.0.1/7100/SIM1");
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), expected);
  // Two seconds for the answers, for each attempt to connect in vain and for each reply that does not come.
  EXPECT_LE(Elapsed(start), 2000U + 4 * 2000U + 5 * 2000U);
  EXPECT_EQ(
      LinesFrom(L"ReadInvalidChars"),
      (Lines{L"ReadInvalidChars(KESP,71" + SystemCodePage().FromBytes("\xC8") + L",SIM1,1.0\r,8,10.0.0.5)"}));
  Calls connections{"10.0.0.1:10001"};
  connections.insert(connections.end(), 4, "10.0.0.8:10001");
  for (int n = 7; n >= 2; --n) connections.push_back("10.0.0." + std::to_string(n) + ":10001");
  EXPECT_EQ(Connections(), connections);
  ExpectRestored();
}

// Whichever call of the socket fails: nothing escapes but what says so, and everything is put back.
TEST_F(CKespTCPIdentityTest, AnyCallOfTheSocketFails_TheRestGoesOnAndIsRestored) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  PlaceInstrument(2, "KESP,7200,SIM2,1.0");
  ASSERT_TRUE(Discover());
  Calls calls = socket_->calls;
  std::erase(calls, "GetData");  // never fails
  ASSERT_GT(calls.size(), 10U);
  // The first three are those of the broadcast.
  for (std::size_t nth = 4; nth <= calls.size(); ++nth) {
    tcp_->Devices()->Clear();
    result_ = L"before";
    socket_->FailCall(static_cast<int>(nth), 10050);
    EXPECT_EQ(RaisedBy([&] { Discover(); }), Raised{}) << nth;
    EXPECT_EQ(tcp_->TimeOutmSecs(), 5000) << nth;
    EXPECT_EQ(tcp_->Protocol(), EKespProtocol::sckUDPProtocol) << nth;
    EXPECT_EQ(tcp_->IPType(), EIPType::ipDynamic) << nth;
    EXPECT_EQ(result_, L"") << nth;
    // A device has its own identity or none, never the other's; and closing costs nobody his identity.
    const bool may_be_lost = calls[nth - 1] != "Close";
    const std::wstring first = may_be_lost ? L"10.0.0.1//" : L"10.0.0.1/7100/SIM1";
    const std::wstring second = may_be_lost ? L"10.0.0.2//" : L"10.0.0.2/7200/SIM2";
    EXPECT_THAT(Devices(),
                ElementsAre(AnyOf(L"10.0.0.1/7100/SIM1", first), AnyOf(L"10.0.0.2/7200/SIM2", second)))
        << nth << " " << calls[nth - 1];
  }
}

TEST_F(CKespTCPIdentityTest, TenMinutesAreOver_TheOthersAreNotAsked) {
  StartLog();
  // Each refusal takes one to two seconds, and one in ten is an instrument that answers.
  for (std::uint32_t n = 1; n <= 600; ++n) {
    AddDevice(SenderAt(n).AddressText());
    if (n % 10 == 0) {
      identities_[SenderAt(n).AddressText()] = "KESP,7100,SIM1,1.0\r";
    } else {
      unreachable_.push_back(SenderAt(n).AddressText());
    }
  }
  Answers(SenderAt(1));
  socket_->state_after_connect = EKespTCPState::sckError;
  const std::int32_t start = fakes_.clock.tick();
  EXPECT_TRUE(Discover());
  EXPECT_GE(Elapsed(start), 600'000U);
  EXPECT_LE(Elapsed(start), 600'000U + 5000U);
  EXPECT_LT(Connections().size(), 600U);
  EXPECT_EQ(LinesFrom(L"log: Ten minutes"),
            (Lines{L"log: Ten minutes are over, the other devices are not asked"}));
  ExpectRestored();
}

TEST_F(CKespTCPIdentityTest, ClientConnectsElsewhereMeanwhile_NobodyGetsTheOthersIdentity) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  PlaceInstrument(2, "KESP,7200,SIM2,1.0");
  // A timer of the client, while the connection to 10.0.0.2 is being made.
  const auto on_connect = socket_->on_connect;
  socket_->on_connect = [this, on_connect] {
    if (socket_->RemoteHost() != L"10.0.0.2") return on_connect();
    socket_->Then([this] {
      tcp_->SetIPAddress(L"10.0.0.1");
      EXPECT_TRUE(tcp_->Initialize());
    });
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1", L"10.0.0.2//"}));
}

TEST_F(CKespTCPIdentityTest, HandlerRemovesSome_TheOthersAreAskedOnce) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  PlaceInstrument(2, "KESP,7200,SIM2,1.0");
  PlaceInstrument(3, "KESP,7300,SIM3,1.0");
  events_.handlers[L"ConnectEnd"] = [this] {
    if (Count() == 3) tcp_->Devices()->Remove(1);
  };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Connections(), (Calls{"10.0.0.3:10001", "10.0.0.2:10001"}));
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.2/7200/SIM2", L"10.0.0.3/7300/SIM3"}));
  events_.handlers[L"ConnectEnd"] = [this] { tcp_->Devices()->Clear(); };
  socket_->calls.clear();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Connections(), (Calls{"10.0.0.1:10001"}));  // the one that had come back
  EXPECT_EQ(Count(), 0);
  ExpectRestored();
}

TEST_F(CKespTCPIdentityTest, HandlerSearchesAgain_BothEndAndAreRestored) {
  PlaceInstrument(1, "KESP,7100,SIM1,1.0");
  bool nested = false;
  events_.handlers[L"DataArrivalEnd"] = [&] {
    if (std::exchange(nested, true)) return;
    std::wstring result;
    tcp_->SetProtocol(EKespProtocol::sckUDPProtocol);
    EXPECT_TRUE(tcp_->AutoDetect(result));
  };
  EXPECT_TRUE(Discover());
  EXPECT_TRUE(nested);
  EXPECT_EQ(Devices(), (Lines{L"10.0.0.1/7100/SIM1"}));
  ExpectRestored();
}

}  // namespace
}  // namespace kesp
