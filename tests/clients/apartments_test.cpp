// Objects used from other apartments than their own, through the marshaler of the type library.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "tests/clients/comm_obj_fixture.h"
#include "tests/clients/event_recorder.h"
#include "tests/clients/late_object.h"
#include "tests/clients/library_module.h"
#include "tests/clients/other_apartment.h"
#include "tests/clients/tcp_fixture.h"

namespace kesp::clients {
namespace {

class ApartmentsTest : public CommObjFixture, public testing::WithParamInterface<DWORD> {};

TEST_P(ApartmentsTest, Properties_GoThrough) {
  Passage<_CKespCommObj> passage(comm_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto comm = passage.Arrive();
    ASSERT_NE(comm, nullptr);
    EXPECT_NE(comm.Get(), comm_.Get()) << "a proxy";
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommStyle), csTCPIP);
    EXPECT_EQ(Write(comm, &_CKespCommObj::put_BinaryTimeoutms, 321), S_OK);
    EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csIEEE), S_OK);
    EXPECT_EQ(Read(comm, &_CKespCommObj::GetKey).size(), 11u);
    ComPtr<_CKespIEEE> ieee;
    EXPECT_EQ(ReadObject(comm, &_CKespCommObj::get_CommObject).As(&ieee), S_OK);
    EXPECT_EQ(Read(ieee, &_CKespIEEE::get_PrimaryAddress), 1);
  });
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_BinaryTimeoutms), 321);
  EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommStyle), csIEEE);
}

TEST_P(ApartmentsTest, Query_ResultByReferenceComesBack) {
  Passage<_CKespCommObj> passage(comm_.Get());
  RunElsewhere(GetParam(), [&] {
    OtherCommObj there(passage.Arrive());
    *there.reply_.in_out() = SysAllocString(L"before");
    EXPECT_TRUE(there.Query(L"*IDN?"));
    EXPECT_EQ(there.reply_.str(), kIdentity);
    EXPECT_TRUE(there.QueryBinary(L"ECHO b"));
    EXPECT_EQ(BytesOf(*there.bytes_.get()), "ECHO b\r");
  });
}

TEST_P(ApartmentsTest, LateBoundQuery_ResultComesBackIntoTheVariable) {
  Passage<IDispatch> passage(comm_.Get());
  RunElsewhere(GetParam(), [&] {
    const LateObject late(passage.Arrive());
    Value result(5);
    const Value cmd(L"ECHO late");
    EXPECT_TRUE(late.Call(L"Query", {Variable(result), Plain(cmd)}).IsTrue());
    EXPECT_EQ(result.text(), L"ECHO late");
  });
}

TEST_P(ApartmentsTest, Refusal_NumberAndExcepInfoComeBack) {
  Passage<_CKespTCP> early(tcp_.Get());
  Passage<IDispatch> late(tcp_.Get());
  RunElsewhere(GetParam(), [&] {
    // Windows brings the error information of such a call back as well; Wine's proxies do not.
    EXPECT_EQ(Write(early.Arrive(), &_CKespTCP::put_Port, 0), ERR_INVALID_PORT);
    const Outcome outcome = LateObject(late.Arrive()).Put(L"Port", Plain(Value(0)));
    EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.scode, ERR_INVALID_PORT);
    EXPECT_EQ(outcome.source, L"[CKespTCP - Port]");
    EXPECT_EQ(outcome.description, L"Invalid Port");
  });
}

TEST_P(ApartmentsTest, Events_ReachAHandlerInItsApartment) {
  Passage<_CKespTCP> passage(tcp_.Get());
  RunElsewhere(GetParam(), [&] {
    const auto tcp = passage.Arrive();
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    const DWORD thread = GetCurrentThreadId();
    bool own_thread = true;
    recorder->listener = [&](const std::wstring&) { own_thread &= GetCurrentThreadId() == thread; };
    Connection connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get());
    EXPECT_TRUE(CallsTrue(tcp, &_CKespTCP::Initialize));
    EXPECT_EQ(recorder->journal, (std::vector<std::wstring>{L"ConnectBegin()", L"ConnectEnd()"}));
    // A single-threaded apartment is called on its thread, the other one on any.
    EXPECT_EQ(own_thread, GetParam() == COINIT_APARTMENTTHREADED);
  });
}

// What a handler elsewhere leaves in an argument is what the next handler sees.
TEST_P(ApartmentsTest, InOutArgumentsOfEvents_ComeBack) {
  const RefusingPort nobody;
  Write(tcp_, &_CKespTCP::put_Port, nobody.number());
  Write(tcp_, &_CKespTCP::put_TimeOutmSecs, 1000);
  std::atomic<bool> is_connected = false;
  std::atomic<bool> go = false;
  Passage<_CKespTCP> passage(tcp_.Get());
  OtherApartment elsewhere(GetParam(), [&] {
    const auto tcp = passage.Arrive();
    const auto there = EventRecorder::Make(__uuidof(__CKespTCP));
    there->handlers[L"ErrorBegin"] = [](DISPPARAMS& arguments) {
      SysReAllocString(V_BSTRREF(&arguments.rgvarg[5]), L"changed");
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    Connection first(tcp.Get(), __uuidof(__CKespTCP), there.Get());
    is_connected = true;
    EXPECT_TRUE(PumpUntil([&] { return go.load(); }));
    VARIANT_BOOL answer = VARIANT_TRUE;
    EXPECT_EQ(tcp->Initialize(&answer), ERR_TIMEOUT);
  });
  EXPECT_TRUE(PumpUntil([&] { return is_connected.load(); }));
  const auto here = EventRecorder::Make(__uuidof(__CKespTCP));
  const Connection second(tcp_.Get(), __uuidof(__CKespTCP), here.Get());
  go = true;
  elsewhere.Join();
  ASSERT_FALSE(here->journal.empty());
  EXPECT_NE(here->journal[0].find(L"&changed"), std::wstring::npos)
      << testing::PrintToString(here->journal[0]);
  EXPECT_NE(here->journal[0].find(L"&True"), std::wstring::npos) << testing::PrintToString(here->journal[0]);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ApartmentsTest, ApartmentKinds(), ApartmentKindName);

// An object whose pointer goes to another thread without marshaling, which a client must not do.
class UnmarshaledApartmentsTest : public TcpFixture {
 protected:
  static void RunOnAThread(const std::function<void()>& work) {
    std::thread([&] {
      const Apartment apartment;
      work();
    }).join();
  }

  // The library's hidden windows of this process.
  static std::vector<HWND> HiddenWindows() {
    std::vector<HWND> windows;
    for (HWND window = nullptr;
         (window = FindWindowExW(HWND_MESSAGE, window, L"KespMessageWindow", nullptr)) != nullptr;) {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process == GetCurrentProcessId()) windows.push_back(window);
    }
    return windows;
  }

  // Has the instrument answer until an arrival waits in the queue of the window. The call that sends a
  // command may already have worked off the arrival of the reply to it.
  bool LetAnArrivalWait(HWND window) {
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 10000) {
      EXPECT_EQ(WriteLine(L"*IDN?"), S_OK);
      const DWORD sent = GetTickCount();
      while (GetTickCount() - sent < 500) {
        MSG message{};
        if (PeekMessageW(&message, window, 0, 0, PM_NOREMOVE) != FALSE) return true;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
      }
    }
    return false;
  }

  // The code that a window left behind still needs.
  LibraryModule module_;
};

TEST_F(UnmarshaledApartmentsTest, LastReleaseThere_TheMessagesHereReachNobodyAndTheWindowGoes) {
  for (int round = 0; round < 10; ++round) {
    tcp_ = Create<_CKespTCP>(__uuidof(CKespTCP));
    SetTarget(tcp_.Get());
    EXPECT_TRUE(Initialize());
    const std::vector<HWND> windows = HiddenWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_TRUE(LetAnArrivalWait(windows[0]));
    RunOnAThread([&] { tcp_.Reset(); });
    EXPECT_TRUE(PumpUntil([] { return HiddenWindows().empty(); }));
  }
}

TEST_F(UnmarshaledApartmentsTest, CallsThere_AreRefusedAtOnceAndAQueryHasTheStatus) {
  OtherCommObj other;
  tcp_ = UseInstrument(other.comm_.Get());
  EXPECT_TRUE(Initialize());
  const std::wstring source = L"[CKespTCP - Initialize()]";
  const std::wstring description =
      L"Called from the wrong thread: the socket's notifications go to the thread that connected first";
  const DWORD start = GetTickCount();
  RunOnAThread([&] {
    EXPECT_EQ(RefusalOf(Judge([&](VARIANT_BOOL* answer) { return tcp_->Initialize(answer); })),
              (Refusal{RPC_E_WRONG_THREAD, source, description}));
    EXPECT_EQ(ReadLine(), RPC_E_WRONG_THREAD);
    EXPECT_FALSE(other.Query(L"*IDN?"));
    other.ExpectStatus(cfrInitializeFailed, source, description);
  });
  EXPECT_LT(GetTickCount() - start, 1000U);
  // The thread that connected goes on, over its connection.
  EXPECT_EQ(Read(tcp_, &_CKespTCP::get_State), sckConnected);
  EXPECT_EQ(Exchange(L"*IDN?"), kIdentity);
}

// A client without message loop: the objects live in an apartment that COM makes for them.
TEST(MultithreadedClientTest, CreatesQueriesAndReleases) {
  std::thread([] {
    const Apartment apartment(COINIT_MULTITHREADED);
    const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
    {
      OtherCommObj client;
      const auto tcp = UseInstrument(client.comm_.Get());
      Connection(tcp.Get(), __uuidof(__CKespTCP), recorder.Get()).Abandon();
      EXPECT_TRUE(client.Query(L"*IDN?"));
      EXPECT_EQ(client.reply_.str(), kIdentity);
      EXPECT_EQ(recorder->Count(L"DataArrivalEnd"), 1u);
      EXPECT_GT(recorder->references(), 1u);
    }
    // The object is gone when its handler is let go. (DllCanUnloadNow is no witness here: Wine keeps the
    // class factory of every apartment-threaded class that a multithreaded client asks for.)
    EXPECT_TRUE(PumpUntil([&] { return recorder->references() == 1; }));
  }).join();
}

// They make their objects one after the other, because Wine may hang where several threads set up COM at
// once.
TEST(MultithreadedClientTest, ManyThreadsAtOnce) {
  std::atomic<int> ready = 0;
  std::atomic<int> answered = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      const Apartment apartment(i % 2 == 0 ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED);
      OtherCommObj client;
      const auto tcp = UseInstrument(client.comm_.Get());
      Write(tcp, &_CKespTCP::put_TimeOutmSecs, 20000);
      ++ready;
      EXPECT_TRUE(PumpUntil([&] { return ready == 4; }));
      for (int round = 0; round < 5; ++round) {
        const std::wstring cmd = L"ECHO " + std::to_wstring(i * 100 + round);
        if (client.Query(cmd) && client.reply_.str() == cmd) ++answered;
      }
    });
    EXPECT_TRUE(PumpUntil([&] { return ready > i; }));
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(answered, 4 * 5);
}

}  // namespace
}  // namespace kesp::clients
