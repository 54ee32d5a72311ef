// Threads that talk to devices at the same time: none sees what another one's calls came to.
#include <atomic>
#include <thread>

#include "tests/clients/event_recorder.h"
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

// One device answers, one never finishes its reply, and at address 9 is none.
constexpr char kBus[] = R"({"devices": [
  {"gpib": {"primary": 5}, "commands": {"*IDN?": "KESP,GP488,SIM48805,2.0"}},
  {"gpib": {"primary": 6}, "reply_terminator": "", "end": false, "commands": {"*IDN?": "??"}}]})";

constexpr int kExchanges = 150;
// Where two calls have to meet by chance.
constexpr int kManyExchanges = 2000;

// Two threads, each let on in its turn.
class Turns {
 public:
  // Waits for the turn of that thread, 0 or 1; gives up when the other one has ended.
  void Await(int thread) const {
    while (turn_ % 2 != thread && !ended_) Sleep(0);
  }
  void Pass() { ++turn_; }
  void End() {
    ended_ = true;
    ++turn_;
  }

 private:
  std::atomic<int> turn_ = 0;
  std::atomic<bool> ended_ = false;
};

// Every step of an exchange waits for its turn; with null, none waits.
class TurnTaker {
 public:
  TurnTaker(Turns* turns, int thread) : turns_(turns), thread_(thread) {}
  ~TurnTaker() {
    if (turns_ != nullptr) turns_->End();
  }
  TurnTaker(const TurnTaker&) = delete;
  TurnTaker& operator=(const TurnTaker&) = delete;

  template <class Step>
  Refusal Take(const Step& step) {
    if (turns_ == nullptr) return step();
    turns_->Await(thread_);
    const Refusal refusal = step();
    turns_->Pass();
    return refusal;
  }

 private:
  Turns* turns_;
  int thread_;
};

struct Way {
  DWORD apartment;
  bool takes_turns;
};

void PrintTo(const Way& way, std::ostream* out) {
  *out << (way.apartment == COINIT_MULTITHREADED ? "MTA" : "STA") << (way.takes_turns ? " in turns" : "");
}

class GpibThreadsTest : public GpibDriverFixture, public testing::WithParamInterface<Way> {
 protected:
  GpibThreadsTest() { driver_.Load(kBus); }

  // Runs both in an apartment of its own kind each.
  void RunBoth(const std::function<void(TurnTaker&)>& first, const std::function<void(TurnTaker&)>& second) {
    Turns turns;
    Turns* const shared = GetParam().takes_turns ? &turns : nullptr;
    std::thread other([&] {
      const Apartment apartment(GetParam().apartment);
      TurnTaker taker(shared, 1);
      second(taker);
    });
    std::thread([&] {
      const Apartment apartment(GetParam().apartment);
      TurnTaker taker(shared, 0);
      first(taker);
    }).join();
    other.join();
  }
  // The device that always answers.
  static void Succeed(TurnTaker& turns) {
    IeeeClient client;
    EXPECT_EQ(client.Initialize(), kDone);
    for (int i = 0; i < kExchanges; ++i) {
      EXPECT_EQ(turns.Take([&] { return client.WriteLine(L"*IDN?"); }), kDone);
      EXPECT_EQ(turns.Take([&] { return client.ReadLine(); }), kDone);
      EXPECT_EQ(client.reply.str(), L"KESP,GP488,SIM48805,2.0\n");
    }
  }
};

INSTANTIATE_TEST_SUITE_P(
    Ways, GpibThreadsTest,
    testing::Values(Way{COINIT_APARTMENTTHREADED, true}, Way{COINIT_APARTMENTTHREADED, false},
                    Way{COINIT_MULTITHREADED, true}, Way{COINIT_MULTITHREADED, false}),
    [](const auto& info) {
      return std::string(info.param.apartment == COINIT_MULTITHREADED ? "Multithreaded" : "SingleThreaded") +
             (info.param.takes_turns ? "InTurns" : "AtOnce");
    });

TEST_P(GpibThreadsTest, OneIsRefusedEveryWrite) {
  RunBoth(&Succeed, [](TurnTaker& turns) {
    IeeeClient client;
    client.SetAddress(9);
    EXPECT_EQ(client.Initialize(), kDone);
    for (int i = 0; i < 2 * kExchanges; ++i) {
      EXPECT_EQ(turns.Take([&] { return client.WriteLine(L"t"); }).result, ERR_IBWRT);
    }
  });
  EXPECT_EQ(driver_.Calls("ibwrt").size(), 3U * kExchanges);
}

TEST_P(GpibThreadsTest, OneRunsIntoEveryTimeOut) {
  const bool is_proxy = GetParam().apartment == COINIT_MULTITHREADED;
  RunBoth(&Succeed, [=](TurnTaker& turns) {
    IeeeClient client;
    client.SetAddress(6);
    client.SetTimeOut(to1ms);
    EXPECT_EQ(client.Initialize(), kDone);
    for (int i = 0; i < kExchanges; ++i) {
      EXPECT_EQ(turns.Take([&] { return client.WriteLine(L"*IDN?"); }), kDone);
      const Refusal refusal = turns.Take([&] { return client.ReadLine(); });
      EXPECT_EQ(refusal.result, ERR_IBRD);
      // Wine's proxies lose the error's text.
      EXPECT_TRUE(is_proxy || refusal.description.ends_with(L"Error: 6 - I/O operation aborted")) << refusal;
      EXPECT_EQ(client.reply.str(), L"??");
    }
  });
}

// Two devices, since one would mix up the replies of both.
TEST_P(GpibThreadsTest, BothOpenAndClose) {
  driver_.Load(BusWith(
      R"({"gpib": {"primary": 5}, "commands": {"t": "five"}}, {"gpib": {"primary": 6}, "commands": {"t": "six"}})"));
  const auto converse = [](short address, const std::wstring& reply) {
    return [=](TurnTaker&) {
      IeeeClient client;
      client.SetAddress(address);
      for (int i = 0; i < kExchanges; ++i) EXPECT_EQ(client.Converse(L"t"), reply);
    };
  };
  RunBoth(converse(5, L"five\n"), converse(6, L"six\n"));
  EXPECT_EQ(driver_.Calls("ibdev").size(), 2U * kExchanges);
}

class GpibTwoThreadsTest : public GpibDriverFixture {
 protected:
  GpibTwoThreadsTest() { driver_.Load(kBus); }
};

// A wait of the driver on one thread holds up no other. (All objects of multithreaded apartments are on one.)
TEST_F(GpibTwoThreadsTest, OneWaits_TheOtherGoesOn) {
  std::atomic<bool> is_waiting = false;
  std::atomic<bool> is_over = false;
  std::thread waiting([&] {
    const Apartment apartment;
    IeeeClient client;
    client.SetTimeOut(to3s);
    EXPECT_EQ(client.Initialize(), kDone);
    is_waiting = true;
    EXPECT_EQ(client.ReadLine().result, ERR_IBRD);
    is_over = true;
  });
  EXPECT_TRUE(PumpUntil([&] { return is_waiting.load(); }));
  RunElsewhere(COINIT_APARTMENTTHREADED, [] {
    IeeeClient client;
    client.SetAddress(6);
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(client.Initialize(), kDone);
      EXPECT_EQ(client.WriteLine(L"t"), kDone);
      EXPECT_EQ(client.Uninitialize(), kDone);
    }
  });
  EXPECT_FALSE(is_over) << driver_.RecordText();
  waiting.join();
}

TEST_F(GpibTwoThreadsTest, ManyExchangesAtOnce_NeitherSeesTheOthersOutcome) {
  std::thread refused([] {
    const Apartment apartment;
    IeeeClient client;
    client.SetAddress(9);
    EXPECT_EQ(client.Initialize(), kDone);
    for (int i = 0; i < kManyExchanges; ++i) EXPECT_EQ(client.WriteLine(L"t").result, ERR_IBWRT);
  });
  RunElsewhere(COINIT_APARTMENTTHREADED, [] {
    IeeeClient client;
    EXPECT_EQ(client.Initialize(), kDone);
    for (int i = 0; i < kManyExchanges; ++i) {
      EXPECT_EQ(client.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
    }
  });
  refused.join();
}

// What a handler elsewhere leaves in Abort ends the search here.
TEST_P(GpibThreadsTest, AbortOfAHandlerElsewhere_ComesBack) {
  const Apartment apartment;
  IeeeClient client;
  Passage<_CKespIEEE> passage(client.object.Get());
  RunElsewhere(GetParam().apartment, [&] {
    const auto proxy = passage.Arrive();
    ASSERT_NE(proxy, nullptr);
    const auto recorder = EventRecorder::Make(__uuidof(__CKespIEEE));
    recorder->handlers[L"AutoDetectUpdate"] = [](DISPPARAMS& arguments) {
      *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    };
    const Connection connection(proxy.Get(), __uuidof(__CKespIEEE), recorder.Get());
    Text reply(L"before");
    VARIANT_BOOL answer = VARIANT_TRUE;
    EXPECT_EQ(proxy->AutoDetect(reply.in_out(), dlAllCommands, soFindFirst, &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_FALSE);
    EXPECT_EQ(reply.str(), L"");
    EXPECT_EQ(recorder->journal.size(), 3U) << testing::PrintToString(recorder->journal);
  });
  EXPECT_EQ(driver_.Record(), CallLines{});
}

}  // namespace
}  // namespace kesp::clients
