// The serial transport used from another apartment than its own.
#include <gtest/gtest.h>

#include "tests/clients/other_apartment.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

class SerialApartmentsTest : public SerialFixture, public testing::WithParamInterface<DWORD> {
 protected:
  SerialApartmentsTest() { wire_.OnBytes("?\r").Reply("12.345\r\n"); }
};

INSTANTIATE_TEST_SUITE_P(Kinds, SerialApartmentsTest,
                         testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED),
                         [](const auto& info) {
                           return info.param == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded";
                         });

TEST_P(SerialApartmentsTest, Query_ResultByReferenceComesBack) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  UseSerialLine(SerialTransport(comm));
  Passage<_CKespCommObj> passage(comm.Get());
  RunElsewhere(GetParam(), [&] {
    const auto proxy = passage.Arrive();
    ASSERT_NE(proxy, nullptr);
    EXPECT_NE(proxy.Get(), comm.Get()) << "not the object itself";
    Text reply(L"before");
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(proxy->Query(reply.in_out(), Text(L"?").get(), Text(L"").get(), Text(L"").get(), &answer),
              S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
    EXPECT_EQ(reply.str(), L"12.345");
  });
}

TEST_P(SerialApartmentsTest, Events_ReachAHandlerInItsApartment) {
  Passage<_CKespCOMPort3> passage(port_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto proxy = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespCOMPort3));
    const DWORD thread = GetCurrentThreadId();
    bool own_thread = true;
    recorder->listener = [&](const std::wstring&) { own_thread &= GetCurrentThreadId() == thread; };
    Connection connection(proxy.Get(), __uuidof(__CKespCOMPort3), recorder.Get());
    EXPECT_TRUE(CallsTrue(proxy, &_CKespCOMPort3::OpenPort));
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(proxy->WriteLine(Text(L"?").get(), Text(L"").get(), Text(L"").get(), VARIANT_FALSE, &answer),
              S_OK);
    EXPECT_EQ(recorder->journal.front(), L"WriteBegin(?," + SerialPortText() + L")");
    EXPECT_EQ(recorder->journal.back(), L"WriteEnd()");
    // A single-threaded apartment is called on its thread, the other one on any.
    EXPECT_EQ(own_thread, GetParam() == COINIT_APARTMENTTHREADED);
  });
}

// What a handler elsewhere leaves in Abort ends the search here.
TEST_P(SerialApartmentsTest, AbortOfAHandlerElsewhere_ComesBack) {
  Passage<_CKespCOMPort3> passage(port_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto proxy = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespCOMPort3));
    recorder->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    Connection connection(proxy.Get(), __uuidof(__CKespCOMPort3), recorder.Get());
    Text reply(L"");
    VARIANT_BOOL answer = VARIANT_TRUE;
    EXPECT_EQ(proxy->AutoDetect(reply.in_out(), dlSCPIOnly, Text(L"").get(), &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(recorder->journal.size(), 3U);
  });
  EXPECT_EQ(wire_.ReceiveUntilQuiet(Milliseconds(50)), "");
}

}  // namespace
}  // namespace kesp::clients
