// Discovery of three instruments on a network, through the interfaces that clients use.
#include "tests/clients/comm_obj_client.h"
#include "tests/clients/discovery_fixture.h"
#include "tests/clients/foreign_instrument.h"
#include "tests/clients/released_search_fixture.h"

namespace kesp::clients {
namespace {

// They answer the broadcast in this order.
const Lines kThree{L"10.88.0.11/7100/NET00011", L"10.88.0.12/7200/NET00022", L"10.88.0.13/7300/NET00033"};

class DiscoveryTest : public DiscoveryFixture {};

TEST_F(DiscoveryTest, ThreeInstruments_AreFoundWithTheirIdentity) {
  StartLog();
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), kThree);
  ExpectRestored();
  // One to two seconds for the answers; asking takes no time to speak of.
  EXPECT_GE(elapsed_, 1000U);
  EXPECT_LT(elapsed_, 2000U + 3000U);
  // Where the walk ended.
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_IPAddress), L"10.88.0.11");
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_Port), 10001);
  EXPECT_EQ(LogLines(L"Receiving"),
            (Lines{L"Receiving from 10.88.0.11:30718", L"Receiving from 10.88.0.12:30718",
                   L"Receiving from 10.88.0.13:30718"}));
  EXPECT_EQ(LogLines(L"UDP"), (Lines{L"UDP discovery successful. Found 3 devices."}));
  EXPECT_EQ(LogLines(L"Connecting"),
            (Lines{L"Connecting to 10.88.0.13 on port 10001...", L"Connecting to 10.88.0.12 on port 10001...",
                   L"Connecting to 10.88.0.11 on port 10001..."}));
  const Lines& journal = recorder_->journal;
  EXPECT_EQ(journal.front(), L"AutoDetectBegin()");
  EXPECT_TRUE(journal[1].starts_with(L"SendProgressBegin(4,")) << testing::PrintToString(journal[1]);
  EXPECT_EQ(journal.back(), L"AutoDetectEnd()");
  EXPECT_EQ(recorder_->Count(L"ConnectEnd"), 3U);
  EXPECT_EQ(recorder_->Count(L"ErrorBegin"), 0U);
}

TEST_F(DiscoveryTest, Again_NobodyIsStoredTwice) {
  EXPECT_TRUE(Discover());
  const ComPtr<_CInstrument> first = Item(1);
  EXPECT_EQ(Write(first, &_CInstrument::put_Model, L"to be read anew"), S_OK);
  EXPECT_EQ(Write(first, &_CInstrument::put_MACAddress, L"00-11"), S_OK);
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), kThree);
  EXPECT_TRUE(IsSameObject(Item(1).Get(), first.Get()));
  EXPECT_EQ(Read(first, &_CInstrument::get_MACAddress), L"00-11");
}

TEST_F(DiscoveryTest, Found_AreFullObjects) {
  EXPECT_TRUE(Discover());
  const ComPtr<_CInstrument> item = Item(2);
  EXPECT_TRUE(IsSameObject(Item(2).Get(), item.Get()));
  EXPECT_EQ(Read(item, &_CInstrument::get_IPType), ipStatic);
  EXPECT_EQ(Read(item, &_CInstrument::get_MACAddress), L"");
  ComPtr<IProvideClassInfo2> info;
  EXPECT_EQ(item.As(&info), S_OK);
  const LateObject late(item);
  EXPECT_EQ(late.Get(L"Model").value.text(), L"7200");
  // It outlives the collection and the transport.
  connection_.Disconnect();
  devices_.Reset();
  tcp_.Reset();
  EXPECT_EQ(Read(item, &_CInstrument::get_Serial), L"NET00022");
}

// The library's own and a client's stand side by side in the collection.
class DiscoveryWithForeignDevicesTest : public DiscoveryFixture {
 protected:
  ComPtr<ForeignInstrument> Add(const std::wstring& address) {
    auto instrument = ForeignInstrument::Make();
    instrument->address = address;
    EXPECT_EQ(devices_->AddReference(instrument.Get(), nullptr), S_OK);
    return instrument;
  }
};

TEST_F(DiscoveryWithForeignDevicesTest, AreDuplicatesAndGetTheirIdentityUnlessTheyRefuse) {
  const auto good = Add(L"10.88.0.12");
  const auto refuses_its_model = Add(L"10.88.0.13");
  refuses_its_model->model_result = E_FAIL;
  refuses_its_model->serial = L"kept";
  const auto refuses_its_address = Add(L"10.88.0.11");
  refuses_its_address->address_result = E_FAIL;
  EXPECT_TRUE(Discover());
  refuses_its_address->address_result = S_OK;
  EXPECT_EQ(Devices(), (Lines{kThree[1], L"10.88.0.13//kept", L"10.88.0.11//", kThree[0]}));
  EXPECT_TRUE(IsSameObject(Item(1).Get(), good.Get()));
}

// It is asked at the first answer, before that is stored.
TEST_F(DiscoveryWithForeignDevicesTest, ClearsTheCollectionWhenItIsAsked_TheOthersAreFound) {
  Add(L"10.88.0.12")->on_address = [this] { EXPECT_EQ(devices_->Clear(), S_OK); };
  EXPECT_TRUE(Discover());
  EXPECT_EQ(Devices(), kThree);
  ExpectRestored();
}

TEST_F(DiscoveryTest, ThroughTheCommunicationObject) {
  OtherCommObj client;
  tcp_ = client.Use<_CKespTCP>(csTCPIP);
  devices_ = ReadObject(tcp_, &_CKespTCP::get_Devices);
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Protocol, sckUDPProtocol), S_OK);
  VARIANT_BOOL found = 5;
  EXPECT_EQ(client.comm_->DetectInstrument(result_.in_out(), dlAllCommands, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(Devices(), kThree);
  client.ExpectStatus(cfrSuccess);
}

class DiscoveryLastReferenceTest : public ReleasedSearchFixture {};

TEST_P(DiscoveryLastReferenceTest, Released_TheSearchEndsAllTheSame) {
  EXPECT_EQ(Write(tcp_, &_CKespTCP::put_Protocol, sckUDPProtocol), S_OK);
  Text result;
  ExpectFoundAllTheSame(result);
}

INSTANTIATE_TEST_SUITE_P(Event, DiscoveryLastReferenceTest,
                         testing::Values(L"DataArrivalBegin", L"ConnectBegin", L"AutoDetectEnd"), EventName);

}  // namespace
}  // namespace kesp::clients
