// A client whose manifest asks for the library beside it, in a Windows in which nothing is registered.
#include <gtest/gtest.h>

#include <string>

#include "tests/clients/early_bound.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kReply[] = L"KESP,7100,NET00011,1.0";

class PortableClientTest : public TcpEventsFixture {};

TEST_F(PortableClientTest, ObjectByItsProgId_AnswersAQuery) {
  for (const wchar_t* name : {L"KespCommObj.CKespCommObj", L"KespCommObj.CKespCommObj.1"}) {
    CLSID clsid{};
    ASSERT_EQ(CLSIDFromProgID(name, &clsid), S_OK) << name;
    const auto comm = Create<_CKespCommObj>(clsid);
    UseInstrument(comm.Get());
    VARIANT_BOOL is_answered = VARIANT_FALSE;
    EXPECT_EQ(
        comm->Query(reply_.in_out(), Text(L"*IDN?").get(), Text(L"").get(), Text(L"").get(), &is_answered),
        S_OK);
    EXPECT_EQ(reply_.str(), kReply);
  }
}

TEST_F(PortableClientTest, EveryCreatableClass_IsCreated) {
  for (const CLSID& clsid : {__uuidof(CKespCommObj), __uuidof(CKespCOMPort3), __uuidof(CKespTCP),
                             __uuidof(CKespIEEE), __uuidof(CInstrument), __uuidof(CInstruments)}) {
    Create<IDispatch>(clsid);
  }
}

// The handler's names of events come from the type library that the manifest names.
TEST_F(PortableClientTest, Query_EventsAreHeard) {
  EXPECT_TRUE(Initialize());
  EXPECT_EQ(Exchange(L"*IDN?"), kReply);
  EXPECT_TRUE(Uninitialize());
  EXPECT_EQ(journal(), (Lines{L"ConnectBegin()", L"ConnectEnd()", L"SendProgressBegin(6,0)",
                              L"SendProgressEnd()", L"SendCompleteBegin()", L"SendCompleteEnd()",
                              L"DataArrivalBegin(23)", L"DataArrivalEnd()"}));
}

// Made before anybody asks for the type library by its identifier.
TEST_F(TcpFixture, FromAnotherApartment_CallsAndEventsGoThrough) {
  Passage<_CKespTCP> passage(tcp_.Get());
  RunElsewhere(COINIT_MULTITHREADED, [&] {
    const auto there = passage.Arrive();
    EXPECT_NE(there.Get(), tcp_.Get()) << "a proxy";
    SetTarget(there.Get());
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    const Connection connection(there.Get(), __uuidof(__CKespTCP), recorder.Get());
    recorder->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      // The last argument comes first.
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    VARIANT_BOOL is_found = VARIANT_TRUE;
    Text identity;
    EXPECT_EQ(there->AutoDetect(identity.in_out(), dlSCPIOnly, &is_found), S_OK);
    EXPECT_EQ(is_found, VARIANT_FALSE) << "ended by Abort";
    EXPECT_EQ(recorder->Count(L"AutoDetectUpdate"), 1u);
  });
}

}  // namespace
}  // namespace kesp::clients
