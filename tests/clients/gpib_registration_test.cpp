// The registration of threads with the driver: each of its outcomes, and the end of a thread.
#include <algorithm>
#include <thread>

#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

const std::string kOpened = "1 ibdev(0,5,0,12,1,0) = 1 sta 0100 err 0 cnt 0";

class GpibRegistrationTest : public GpibStage {
 protected:
  GpibRegistrationTest() {
    ieee_.SetClears(false);
    ieee_.SetEndsReads(false);
  }
  // The results of the driver's next registrations.
  void Script(const std::string& results) { driver_.Load(MeterBus("\"registration\": [" + results + "]")); }
  void ExpectRefused() {
    EXPECT_EQ(ieee_.Initialize(),
              (Refusal{ERR_IBDEV, kOpeningSource, DriverError(L"ibdev()", L"0 - System error")}));
    EXPECT_EQ(ieee_.Uninitialize().result, ERR_INVALID_DEVICE);
    EXPECT_EQ(driver_.Calls(), CallLines{}) << "no call of the bus";
  }
};

std::string Registered(int result) {
  return "1 RegisterGpibGlobalsForThread(4 cells) = " + std::to_string(result);
}
std::string Unregistered(int result) {
  return "1 UnregisterGpibGlobalsForThread() = " + std::to_string(result);
}

GPIB_TEST(GpibRegistrationTest, Once_ForAllCallsAndObjects) {
  {
    IeeeClient other;
    EXPECT_EQ(other.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  }
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  const CallLines record = driver_.Record();
  EXPECT_EQ(std::count(record.begin(), record.end(), Registered(0)), 1) << testing::PrintToString(record);
}

GPIB_TEST(GpibRegistrationTest, OtherCellsThere_AreReplaced) {
  Script("1, 0");
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Record(), (CallLines{Registered(1), Unregistered(1), Registered(0), kOpened}));
}

// What a function returns counts where the cells say nothing.
GPIB_TEST(GpibRegistrationTest, OtherCellsStay_CallIsMadeAndTheNextOneTriesAgain) {
  Script("1, 1");
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Record(), (CallLines{Registered(1), Unregistered(1), Registered(1), kOpened}));
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  EXPECT_EQ(ieee_.Uninitialize(), kDone);
}

// As a new bus does, a host program may take the registration away at any time.
GPIB_TEST(GpibRegistrationTest, RegistrationLost_IsMadeAgainBehindACall) {
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  driver_.Load(MeterBus());
  EXPECT_EQ(ieee_.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  CallLines record = driver_.Record();
  ASSERT_GE(record.size(), 2U);
  record.resize(2);
  EXPECT_EQ(record, (CallLines{kOpened, Registered(0)}));
}

GPIB_TEST(GpibRegistrationTest, RefusedWith2Or3_IsUndoneAndTriedAgain) {
  for (const int refusal : {2, 3}) {
    const std::string results = std::to_string(refusal) + ", " + std::to_string(refusal);
    RunAfresh(driver_, MeterBus("\"registration\": [" + results + "]"), [&] {
      IeeeClient client;
      for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(client.Initialize(),
                  (Refusal{ERR_IBDEV, kOpeningSource, DriverError(L"ibdev()", L"0 - System error")}));
      }
      EXPECT_EQ(driver_.Calls(), CallLines{});
      EXPECT_EQ(client.Initialize(), kDone);
      CallLines record = driver_.Record();
      ASSERT_GE(record.size(), 6U);
      record.resize(6);
      EXPECT_EQ(record, (CallLines{Registered(refusal), Unregistered(1), Registered(refusal), Unregistered(1),
                                   Registered(0), kOpened}));
    });
  }
}

GPIB_TEST(GpibRegistrationTest, RefusedOtherwise_IsTriedAgain) {
  Script("7, 4");
  ExpectRefused();
  ExpectRefused();
  EXPECT_EQ(ieee_.Initialize(), kDone);
  EXPECT_EQ(driver_.Record(), (CallLines{Registered(7), Registered(4), Registered(0), kOpened}));
}

GPIB_TEST(GpibRegistrationTest, RefusedInAQuery_IsItsStatus) {
  Script("2");
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csIEEE), S_OK);
  ComPtr<_CKespIEEE> transport;
  EXPECT_EQ(ReadObject(comm, &_CKespCommObj::get_CommObject).As(&transport), S_OK);
  IeeeClient client(transport);
  Text reply;
  VARIANT_BOOL answer = VARIANT_TRUE;
  EXPECT_EQ(comm->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_FALSE);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommError), cfrInitializeFailed);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorDescr), DriverError(L"ibdev()", L"0 - System error"));
  EXPECT_EQ(comm->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(reply.str(), L"KESP,GP488,SIM48805,2.0\n");
}

class GpibThreadEndTest : public GpibDriverFixture, public testing::WithParamInterface<DWORD> {
 protected:
  // Expects that record, once the thread has come to its end.
  void AwaitRecordsEnd(const std::string& line) {
    EXPECT_TRUE(PumpUntil([&] { return !driver_.Record().empty() && driver_.Record().back() == line; }))
        << driver_.RecordText();
  }
};

// The objects of multithreaded apartments live on a thread that COM makes for them.
INSTANTIATE_TEST_SUITE_P(Kinds, GpibThreadEndTest,
                         testing::Values(COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED),
                         [](const auto& info) {
                           return info.param == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded";
                         });

TEST_P(GpibThreadEndTest, Unregistered) {
  RunElsewhere(GetParam(), [] {
    IeeeClient client;
    EXPECT_EQ(client.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  });
  AwaitRecordsEnd(Unregistered(0));
  EXPECT_EQ(driver_.Record().front(), Registered(0)) << driver_.RecordText();
}

TEST_P(GpibThreadEndTest, DeviceOpenUntilThen_ClosedBeforeThat) {
  RunElsewhere(GetParam(), [] {
    IeeeClient client;
    EXPECT_EQ(client.Initialize(), kDone);
  });
  AwaitRecordsEnd(Unregistered(0));
  EXPECT_EQ(driver_.Calls("ibonl"), (CallLines{"ibonl(1,0)", "ibonl(0,0)"}));
}

TEST_P(GpibThreadEndTest, OneThreadAfterTheOther_AllUnregistered) {
  for (int i = 1; i <= 20; ++i) {
    RunElsewhere(GetParam(), [] {
      IeeeClient client;
      EXPECT_EQ(client.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
    });
    AwaitRecordsEnd(std::to_string(i) + Unregistered(0).substr(1));
  }
}

TEST_P(GpibThreadEndTest, NeverRegistered_NoCall) {
  driver_.Load(MeterBus("\"registration\": [7]"));
  RunElsewhere(GetParam(), [] {
    IeeeClient client;
    EXPECT_EQ(client.Initialize().result, ERR_IBDEV);
  });
  EXPECT_EQ(driver_.Record(), CallLines{Registered(7)});
}

class GpibAbandonedApartmentTest : public GpibDriverFixture {};

// A program may let its thread end without leaving the apartment.
TEST_F(GpibAbandonedApartmentTest, ThreadEnds_Unregistered) {
  std::thread([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    IeeeClient client;
    EXPECT_EQ(client.Converse(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  }).join();
  EXPECT_TRUE(PumpUntil([&] { return driver_.Record().back() == Unregistered(0); })) << driver_.RecordText();
}

}  // namespace
}  // namespace kesp::clients
