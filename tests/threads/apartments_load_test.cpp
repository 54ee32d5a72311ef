// Apartments at full load: each with objects of its own, and objects that several of them call.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "tests/clients/event_recorder.h"
#include "tests/clients/other_apartment.h"
#include "tests/threads/figure.h"
#include "tests/threads/lines.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

using namespace clients;

constexpr DWORD kLongWait = 3'600'000;

// Threads with apartments, each of which is set up before the next one begins, because Wine hangs where two
// do so at once. Their work begins when all are there. The thread that made them serves its apartment until
// they are done.
class ApartmentThreads {
 public:
  using Work = std::function<void(int number)>;
  // Sets up what the thread with that number needs, and returns its work.
  using SetUp = std::function<Work(int number)>;

  ApartmentThreads(const std::vector<DWORD>& kinds, const SetUp& set_up) {
    const int count = static_cast<int>(kinds.size());
    for (int number = 0; number < count; ++number) {
      threads_.emplace_back([this, set_up, number, count, kind = kinds[static_cast<std::size_t>(number)]] {
        {
          const Apartment apartment(kind);
          const Work work = set_up(number);
          ++ready_;
          EXPECT_TRUE(PumpUntil([&] { return ready_ == count; }, kLongWait));
          work(number);
        }
        ++done_;
      });
      EXPECT_TRUE(PumpUntil([&] { return ready_ > number; }, kLongWait));
    }
  }
  ~ApartmentThreads() {
    EXPECT_TRUE(PumpUntil([&] { return done_ == static_cast<int>(threads_.size()); }, kLongWait));
    for (std::thread& thread : threads_) thread.join();
  }
  ApartmentThreads(const ApartmentThreads&) = delete;
  ApartmentThreads& operator=(const ApartmentThreads&) = delete;

  bool AreDone() const { return done_ == static_cast<int>(threads_.size()); }

 private:
  std::atomic<int> ready_ = 0;
  std::atomic<int> done_ = 0;
  std::vector<std::thread> threads_;
};

TEST(TwoApartmentsTest, EachWithItsOwnObjects_EveryReplyIsTheOneThatWasAskedFor) {
  std::atomic<long> right = 0;
  std::atomic<long> wrong = 0;
  const int rounds = Rounds(20);
  {
    const Apartment main_apartment;
    ApartmentThreads threads({COINIT_APARTMENTTHREADED, COINIT_APARTMENTTHREADED}, [&](int thread) {
      auto lines = std::make_shared<std::vector<std::unique_ptr<Line>>>(LinesOfThread(thread));
      // Whatever happens at first happens here, so that only the load is shared.
      for (const auto& line : *lines) EXPECT_TRUE(line->Answers(thread));
      return [&, lines](int number) {
        for (int round = 0; round < rounds; ++round) {
          for (const auto& line : *lines) ++(line->Answers(number * 1'000'000 + round) ? right : wrong);
        }
      };
    });
  }
  Figure("rounds, two apartments", rounds);
  Figure("replies, two apartments", right + wrong);
  Figure("wrong replies, two apartments", wrong);
  EXPECT_EQ(wrong, 0);
}

// What came of calls that may be refused because another caller's operation is under way.
struct Counts {
  std::atomic<long> right = 0;
  std::atomic<long> refused = 0;
  std::atomic<long> wrong = 0;

  // Asks, again and again where the object is busy, until there is a reply.
  void Ask(const ComPtr<_CKespCommObj>& comm, int number) {
    const std::wstring cmd = L"ECHO " + std::to_wstring(number);
    for (;;) {
      Text reply;
      VARIANT_BOOL answer = VARIANT_FALSE;
      const HRESULT result =
          comm->Query(reply.in_out(), Text(cmd).get(), Text(L"").get(), Text(L"").get(), &answer);
      if (result == RPC_E_SERVERCALL_RETRYLATER) {
        ++refused;
        Sleep(0);
        continue;
      }
      ++(result == S_OK && answer == VARIANT_TRUE && reply.str() == cmd ? right : wrong);
      return;
    }
  }
  void Report(const std::string& what) const {
    Figure("replies, " + what, right + wrong);
    Figure("refused as busy, " + what, refused);
    Figure("wrong replies, " + what, wrong);
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(right, 0);
  }
};

ComPtr<IGlobalInterfaceTable> GlobalTable() {
  ComPtr<IGlobalInterfaceTable> table;
  EXPECT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                             __uuidof(IGlobalInterfaceTable), reinterpret_cast<void**>(table.GetAddressOf())),
            S_OK);
  return table;
}

// Its owner is busy meanwhile, too: with another object, in whose waits the calls of the others arrive.
TEST(GlobalTableTest, ObjectUsedByOthersWhileItsOwnerIsBusy_EveryReplyIsRight) {
  const Apartment apartment;
  const auto shared = NetworkLine();
  const auto own = NetworkLine();
  const auto table = GlobalTable();
  DWORD cookie = 0;
  ASSERT_EQ(table->RegisterInterfaceInGlobal(shared->client().comm_.Get(), __uuidof(_CKespCommObj), &cookie),
            S_OK);
  Counts counts;
  {
    ApartmentThreads threads(
        {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED, COINIT_MULTITHREADED}, [&](int) {
          return [&](int number) {
            const auto there = GlobalTable();
            for (int round = 0; round < Rounds(20); ++round) {
              ComPtr<_CKespCommObj> comm;
              EXPECT_EQ(there->GetInterfaceFromGlobal(cookie, __uuidof(_CKespCommObj),
                                                      reinterpret_cast<void**>(comm.GetAddressOf())),
                        S_OK);
              counts.Ask(comm, number * 1'000'000 + round);
            }
          };
        });
    for (int round = 0; !threads.AreDone(); ++round) {
      counts.Ask(own->client().comm_, round);
      MSG message;
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
  }
  EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
  counts.Report("global interface table");
}

// Several threads of the multithreaded apartment share one proxy; the object's events go to a handler in an
// apartment of its own.
TEST(MultithreadedTest, SeveralThreadsCallOneObject_ItsHandlerIsCalledInItsOwnApartment) {
  const Apartment apartment;
  const auto line = NetworkLine();
  ComPtr<_CKespTCP> tcp;
  ASSERT_EQ(ReadObject(line->client().comm_, &_CKespCommObj::get_CommObject).As(&tcp), S_OK);
  Passage<_CKespTCP> to_sink(tcp.Get());
  Passage<_CKespCommObj> to_callers(line->client().comm_.Get());
  ComPtr<_CKespCommObj> proxy;
  Counts counts;
  std::atomic<int> callers_done = 0;
  std::size_t ends = 0;
  long elsewhere = 0;
  constexpr int kCallers = 3;
  {
    ApartmentThreads threads(
        {COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED, COINIT_MULTITHREADED, COINIT_MULTITHREADED},
        [&](int thread) -> ApartmentThreads::Work {
          if (thread == 0) {
            return [&](int) {
              const auto recorder = EventRecorder::Make(__uuidof(__CKespTCP));
              const DWORD own = GetCurrentThreadId();
              recorder->listener = [&](const std::wstring&) { elsewhere += GetCurrentThreadId() != own; };
              const Connection connection(to_sink.Arrive().Get(), __uuidof(__CKespTCP), recorder.Get());
              EXPECT_TRUE(PumpUntil([&] { return callers_done == kCallers; }, kLongWait));
              ends = recorder->Count(L"ConnectEnd");
            };
          }
          if (thread == 1) proxy = to_callers.Arrive();
          return [&](int number) {
            for (int round = 0; round < Rounds(20); ++round) counts.Ask(proxy, number * 1'000'000 + round);
            if (++callers_done == kCallers) proxy.Reset();
          };
        });
  }
  counts.Report("multithreaded clients");
  Figure("events in another apartment", static_cast<long>(ends));
  Figure("events on a wrong thread", elsewhere);
  EXPECT_EQ(elsewhere, 0);
  // The first queries may be through before the handler is connected.
  EXPECT_GT(ends, 0U);
}

}  // namespace
}  // namespace kesp::threads
