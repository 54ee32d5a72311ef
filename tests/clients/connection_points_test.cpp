// Connecting event handlers: the container, the connection point and both enumerators.
#include <gtest/gtest.h>

#include <array>

#include "tests/clients/event_recorder.h"
#include "tests/clients/public_classes.h"

namespace kesp::clients {
namespace {

class ConnectionPointsTest : public testing::TestWithParam<PublicClass> {
 protected:
  ConnectionPointsTest() {
    object_.As(&container_);
    EXPECT_EQ(container_->FindConnectionPoint(*GetParam().events, &point_), S_OK);
  }

  Apartment apartment_;
  ComPtr<IUnknown> object_ = MakeObject(GetParam());
  ComPtr<IConnectionPointContainer> container_;
  ComPtr<IConnectionPoint> point_;
  ComPtr<EventRecorder> sink_ = EventRecorder::Make(*GetParam().events);
};

TEST_P(ConnectionPointsTest, Find_KnowsTheEventsAndTheGeneralInterfaceOnly) {
  ComPtr<IConnectionPoint> found;
  EXPECT_EQ(container_->FindConnectionPoint(IID_IDispatch, &found), S_OK);
  EXPECT_TRUE(IsSameObject(found.Get(), point_.Get()));
  IConnectionPoint* none = point_.Get();
  EXPECT_EQ(container_->FindConnectionPoint(IID_IStream, &none), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(container_->FindConnectionPoint(*GetParam().events, nullptr), E_POINTER);
}

TEST_P(ConnectionPointsTest, Point_IsAnObjectOfItsOwnThatKnowsItsEventsAndItsContainer) {
  IID iid = GUID_NULL;
  EXPECT_EQ(point_->GetConnectionInterface(&iid), S_OK);
  EXPECT_EQ(iid, *GetParam().events);
  EXPECT_EQ(point_->GetConnectionInterface(nullptr), E_POINTER);
  ComPtr<IConnectionPointContainer> container;
  EXPECT_EQ(point_->GetConnectionPointContainer(&container), S_OK);
  EXPECT_TRUE(IsSameObject(container.Get(), object_.Get()));
  EXPECT_EQ(point_->GetConnectionPointContainer(nullptr), E_POINTER);
  EXPECT_FALSE(IsSameObject(point_.Get(), object_.Get()));
  void* found = this;
  EXPECT_EQ(point_->QueryInterface(IID_IDispatch, &found), E_NOINTERFACE);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(point_->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_P(ConnectionPointsTest, EnumConnectionPoints_GivesTheOnePoint) {
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(container_->EnumConnectionPoints(&points), S_OK);
  EXPECT_EQ(container_->EnumConnectionPoints(nullptr), E_POINTER);
  std::array<IConnectionPoint*, 2> found{};
  ULONG fetched = 99;
  EXPECT_EQ(points->Next(2, found.data(), &fetched), S_FALSE);
  ASSERT_EQ(fetched, 1u);
  EXPECT_TRUE(IsSameObject(found[0], point_.Get()));
  found[0]->Release();
  EXPECT_EQ(points->Next(1, found.data(), &fetched), S_FALSE);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(points->Reset(), S_OK);
  EXPECT_EQ(points->Skip(1), S_OK);
  EXPECT_EQ(points->Skip(1), S_FALSE);
}

TEST_P(ConnectionPointsTest, EnumConnections_TellsSinksWithTheirCookies) {
  const auto second = EventRecorder::Make(*GetParam().events);
  std::array<DWORD, 2> cookies{};
  ASSERT_EQ(point_->Advise(sink_.Get(), &cookies[0]), S_OK);
  ASSERT_EQ(point_->Advise(second.Get(), &cookies[1]), S_OK);
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(point_->EnumConnections(&connections), S_OK);
  EXPECT_EQ(point_->EnumConnections(nullptr), E_POINTER);

  CONNECTDATA found{};
  EXPECT_EQ(connections->Next(1, &found, nullptr), S_OK);
  EXPECT_EQ(found.dwCookie, cookies[0]);
  EXPECT_TRUE(IsSameObject(found.pUnk, sink_.Get()));
  found.pUnk->Release();

  ComPtr<IEnumConnections> clone;
  ASSERT_EQ(connections->Clone(&clone), S_OK);
  EXPECT_EQ(connections->Clone(nullptr), E_POINTER);
  EXPECT_EQ(connections->Skip(1), S_OK);
  EXPECT_EQ(connections->Next(1, &found, nullptr), S_FALSE);
  EXPECT_EQ(clone->Next(1, &found, nullptr), S_OK) << "the clone stands where the original stood";
  EXPECT_EQ(found.dwCookie, cookies[1]);
  found.pUnk->Release();

  EXPECT_EQ(connections->Reset(), S_OK);
  std::array<CONNECTDATA, 3> all{};
  ULONG fetched = 0;
  EXPECT_EQ(connections->Next(3, all.data(), &fetched), S_FALSE);
  EXPECT_EQ(fetched, 2u);
  for (ULONG i = 0; i < fetched; ++i) all[i].pUnk->Release();
}

TEST_P(ConnectionPointsTest, EnumNext_NullPointers_AreRefused) {
  ComPtr<IEnumConnections> connections;
  point_->EnumConnections(&connections);
  CONNECTDATA found[2] = {};
  ULONG fetched = 99;
  EXPECT_EQ(connections->Next(1, nullptr, &fetched), E_POINTER);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(connections->Next(2, found, nullptr), E_POINTER);
}

TEST_P(ConnectionPointsTest, EnumConnections_IsASnapshot) {
  DWORD cookie = 0;
  point_->Advise(sink_.Get(), &cookie);
  ComPtr<IEnumConnections> connections;
  point_->EnumConnections(&connections);
  EXPECT_EQ(point_->Unadvise(cookie), S_OK);
  CONNECTDATA found{};
  EXPECT_EQ(connections->Next(1, &found, nullptr), S_OK);
  found.pUnk->Release();
}

TEST_P(ConnectionPointsTest, Advise_TakesEventInterfaceOrGeneralOne) {
  for (const bool knows_events : {true, false}) {
    sink_->knows_events = knows_events;
    DWORD cookie = 0;
    EXPECT_EQ(point_->Advise(sink_.Get(), &cookie), S_OK);
    EXPECT_NE(cookie, 0u);
    EXPECT_EQ(sink_->references(), 2u);
    EXPECT_EQ(point_->Unadvise(cookie), S_OK);
    EXPECT_EQ(sink_->references(), 1u) << "the sink is let go";
  }
}

TEST_P(ConnectionPointsTest, Advise_WrongSinkOrNull_IsRefused) {
  DWORD cookie = 99;
  // An object without a dispatch interface: the enumerator of connections.
  ComPtr<IEnumConnections> no_sink;
  point_->EnumConnections(&no_sink);
  EXPECT_EQ(point_->Advise(no_sink.Get(), &cookie), CONNECT_E_CANNOTCONNECT);
  EXPECT_EQ(cookie, 0u);
  EXPECT_EQ(point_->Advise(nullptr, &cookie), E_POINTER);
  EXPECT_EQ(point_->Advise(sink_.Get(), nullptr), E_POINTER);
  EXPECT_EQ(sink_->references(), 1u);
}

TEST_P(ConnectionPointsTest, Unadvise_UnknownCookie_IsRefused) {
  DWORD cookie = 0;
  point_->Advise(sink_.Get(), &cookie);
  EXPECT_EQ(point_->Unadvise(cookie + 1), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(point_->Unadvise(0), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(point_->Unadvise(cookie), S_OK);
  EXPECT_EQ(point_->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_P(ConnectionPointsTest, ObjectReleased_LetsItsSinksGo) {
  DWORD cookie = 0;
  point_->Advise(sink_.Get(), &cookie);
  point_.Reset();
  container_.Reset();
  EXPECT_EQ(sink_->references(), 2u);
  object_.Reset();
  EXPECT_EQ(sink_->references(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Sources, ConnectionPointsTest,
                         testing::Values(kPublicClasses[1], kPublicClasses[2], kPublicClasses[3]),
                         [](const auto& info) { return NarrowName(info.param); });

}  // namespace
}  // namespace kesp::clients
