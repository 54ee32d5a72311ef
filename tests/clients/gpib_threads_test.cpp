// Threads that talk to devices: what they leave when they end, and that none sees what another one's calls
// came to.
#include <algorithm>
#include <thread>

#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

// Where two calls have to meet by chance.
constexpr int kManyExchanges = 1000;

class GpibThreadsTest : public GpibFixture {
 protected:
  GpibThreadsTest() { driver_.Load(Bus()); }

  // Opens a device and leaves it open.
  static void OpenDevice() {
    IeeeClient ieee;
    EXPECT_EQ(ieee.Initialize(), kDone);
  }
  // Until a thread has opened its device.
  void AwaitAnOpening() {
    EXPECT_TRUE(PumpUntil([&] {
      const CallLines calls = driver_.Calls();
      return std::find(calls.begin(), calls.end(), "ibeos(1,1073)") != calls.end();
    }));
  }
  // Expects that the thread which opened a device has closed it and was then unregistered.
  void AwaitItsEnd() {
    const std::string end = "UnregisterGpibGlobalsForThread() = 0";
    EXPECT_TRUE(PumpUntil([&] {
      return !driver_.Record().empty() && driver_.Record().back().ends_with(end);
    })) << driver_.RecordText();
    EXPECT_EQ(driver_.Calls().back(), "ibonl(0,0)");
    EXPECT_EQ(driver_.OpenDescriptors(), 0);
  }
};

// The objects of multithreaded apartments live on a thread that COM makes for them.
TEST_F(GpibThreadsTest, ApartmentEnds_ItsThreadIsUnregisteredBehindTheClosing) {
  for (const DWORD kind : {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
    RunElsewhere(kind, &OpenDevice);
    AwaitItsEnd();
  }
}

TEST_F(GpibThreadsTest, ThreadEndsWithoutLeavingItsApartment_IsUnregistered) {
  std::thread([] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    OpenDevice();
  }).join();
  AwaitItsEnd();
}

TEST_F(GpibThreadsTest, ManyExchangesAtOnce_NeitherSeesTheOthersOutcome) {
  std::thread refused([] {
    const Apartment apartment;
    IeeeClient ieee;
    ieee.Set(&_CKespIEEE::put_PrimaryAddress, 9);
    EXPECT_EQ(ieee.Initialize(), kDone);
    for (int i = 0; i < kManyExchanges; ++i) EXPECT_EQ(ieee.WriteLine(L"t").result, ERR_IBWRT);
  });
  AwaitAnOpening();
  RunElsewhere(COINIT_APARTMENTTHREADED, [] {
    IeeeClient ieee;
    EXPECT_EQ(ieee.Initialize(), kDone);
    for (int i = 0; i < kManyExchanges; ++i) {
      EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
      EXPECT_EQ(ieee.ReadLine(), kDone);
      EXPECT_EQ(ieee.reply.str(), kIdentity);
    }
  });
  refused.join();
}

// A wait of the driver on one thread holds up no other: what that one sends brings the reply that is waited
// for.
TEST_F(GpibThreadsTest, OneWaits_TheOtherGoesOn) {
  std::thread waiting([] {
    const Apartment apartment;
    IeeeClient ieee;
    ieee.Set(&_CKespIEEE::put_TimeOutSecs, to30s);
    EXPECT_EQ(ieee.Initialize(), kDone);
    EXPECT_EQ(ieee.ReadLine(), kDone);
    EXPECT_EQ(ieee.reply.str(), kIdentity);
  });
  AwaitAnOpening();
  RunElsewhere(COINIT_APARTMENTTHREADED, [] {
    IeeeClient ieee;
    ieee.Set(&_CKespIEEE::put_ClearDevice, VARIANT_FALSE);
    EXPECT_EQ(ieee.Initialize(), kDone);
    EXPECT_EQ(ieee.WriteLine(L"*IDN?"), kDone);
  });
  waiting.join();
}

}  // namespace
}  // namespace kesp::clients
