// The last reference let go by another thread than the object's own, at the worst moments.
#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

#include "tests/clients/event_recorder.h"
#include "tests/clients/library_module.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/tcp_fixture.h"
#include "tests/threads/figure.h"
#include "tests/threads/lines.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

using namespace clients;

class LastReleaseTest : public testing::Test {
 protected:
  struct Object {
    ComPtr<_CKespTCP> tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
    ComPtr<EventRecorder> recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    Object() {
      SetTarget(tcp.Get());
      EXPECT_EQ(Write(tcp, &_CKespTCP::put_TimeOutmSecs, 30000), S_OK);
      Connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
    }
    // An object that is gone has let go of its handlers.
    void ExpectGone() const {
      EXPECT_TRUE(PumpUntil([this] { return recorder->references() == 1; }));
    }
  };

  void Wait(unsigned most_ms) { Sleep(std::uniform_int_distribution<unsigned>(0, most_ms)(random_)); }

  Apartment apartment_;
  LibraryModule module_;  // which a window that is left behind still needs
  std::mt19937 random_{1};
};

// A careless client: the pointer itself goes to the other thread. The operation goes on to its end, whatever
// moment of it the release meets.
TEST_F(LastReleaseTest, PlainPointerWhileACallIsInProgress_TheCallEndsWellAndTheObjectGoes) {
  const int rounds = Rounds(4);
  for (int round = 0; round < rounds; ++round) {
    Object object;
    _CKespTCP* const bare = object.tcp.Get();
    // An event of the read itself shows that the call has begun. A release before that would be the client's
    // fault.
    bool will_read = false;
    std::atomic<bool> is_reading = false;
    object.recorder->handlers[L"DataArrivalBegin"] = [&](DISPPARAMS&) {
      if (will_read) is_reading = true;
    };
    EXPECT_TRUE(CallsTrue(object.tcp, &_CKespTCP::Initialize));
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(bare->WriteLine(Text(L"SPLIT?").get(), &answer), S_OK);
    std::thread releasing([&] {
      while (!is_reading) Sleep(0);
      Wait(100);
      object.tcp.Reset();
    });
    Text reply;
    will_read = true;
    EXPECT_EQ(bare->ReadLine(reply.in_out(), &answer), S_OK);
    // Where all four pieces had come before.
    is_reading = true;
    EXPECT_EQ(reply.str(), L"SPLIT 1.0,2.0,3.0");
    releasing.join();
    object.ExpectGone();
  }
  Figure("last releases during a call", rounds);
}

TEST_F(LastReleaseTest, PlainPointerWhileAHandlerRuns_TheHandlerAndTheCallEndWell) {
  const int rounds = Rounds(4);
  for (int round = 0; round < rounds; ++round) {
    Object object;
    _CKespTCP* const bare = object.tcp.Get();
    object.recorder->handlers[L"ConnectBegin"] = [&](DISPPARAMS&) {
      std::thread([&] { object.tcp.Reset(); }).join();
    };
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(bare->Initialize(&answer), S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
    object.ExpectGone();
  }
  Figure("last releases in a handler", rounds);
}

// Between calls, while its own thread works off what comes from the instrument.
TEST_F(LastReleaseTest, PlainPointerWhileItsThreadPumps_TheObjectGoes) {
  const int rounds = Rounds(4);
  for (int round = 0; round < rounds; ++round) {
    Object object;
    EXPECT_TRUE(CallsTrue(object.tcp, &_CKespTCP::Initialize));
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(object.tcp->WriteLine(Text(L"TRICKLE?").get(), &answer), S_OK);
    std::thread releasing([&] {
      Wait(130);
      object.tcp.Reset();
    });
    object.ExpectGone();
    releasing.join();
  }
  Figure("last releases while messages are handled", rounds);
}

// A client that plays by the rules: the object's own thread has no reference, and the last one goes in
// another apartment, while a call of a third one is in progress.
TEST_F(LastReleaseTest, ByProxyDuringACallOfAnother_TheCallEndsWellAndTheObjectGoes) {
  const int rounds = Rounds(4);
  for (int round = 0; round < rounds; ++round) {
    Object object;
    std::atomic<bool> is_connecting = false;
    object.recorder->handlers[L"ConnectBegin"] = [&](DISPPARAMS&) { is_connecting = true; };
    Passage<_CKespTCP> first(object.tcp.Get());
    Passage<_CKespTCP> second(object.tcp.Get());
    object.tcp.Reset();
    OtherApartment calling(COINIT_APARTMENTTHREADED, [&] {
      const auto tcp = first.Arrive();
      EXPECT_TRUE(CallsTrue(tcp, &_CKespTCP::Initialize));
      VARIANT_BOOL answer = VARIANT_FALSE;
      EXPECT_EQ(tcp->WriteLine(Text(L"SPLIT?").get(), &answer), S_OK);
      Text reply;
      EXPECT_EQ(tcp->ReadLine(reply.in_out(), &answer), S_OK);
      EXPECT_EQ(reply.str(), L"SPLIT 1.0,2.0,3.0");
    });
    EXPECT_TRUE(PumpUntil([&] { return is_connecting.load(); }));
    RunElsewhere(COINIT_MULTITHREADED, [&] {
      const auto tcp = second.Arrive();
      Wait(120);
    });
    calling.Join();
    object.ExpectGone();
  }
  Figure("last releases by proxy", rounds);
}

}  // namespace
}  // namespace kesp::threads
