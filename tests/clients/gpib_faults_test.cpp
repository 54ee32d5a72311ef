// A failure at each call of the bus in turn: nothing hangs, no device stays open, the next operation works.
#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

class GpibFaultsTest : public GpibDriverFixture {
 protected:
  // A clean run of the operation, then one with each of its calls failing, each on a thread of its own.
  // `operation` tells whether it succeeded; `next` is what must work afterwards, with the same object.
  template <class Client>
  void Sweep(const std::string& devices, bool (*operation)(Client&), bool (*next)(Client&)) {
    std::size_t calls = 0;
    RunAfresh(driver_, BusWith(devices), [&] {
      Client client;
      EXPECT_TRUE(operation(client)) << driver_.RecordText();
      calls = driver_.Calls().size();
    });
    ASSERT_GT(calls, 0U);
    for (std::size_t at = 1; at <= calls; ++at) {
      for (const char* outcome : {R"("error": 14)", R"("error": 6, "status": 49408, "count": 0)"}) {
        SCOPED_TRACE("call " + std::to_string(at) + " of " + std::to_string(calls) + ": " + outcome);
        RunAfresh(driver_, BusWith(devices, Failures(Failing("*", static_cast<int>(at), outcome))), [&] {
          Client client;
          const bool succeeded = operation(client);
          ExpectOnlyClosingIsForgiven(succeeded);
          EXPECT_TRUE(next(client)) << driver_.RecordText();
        });
        EXPECT_EQ(driver_.OpenDescriptors(), 0) << driver_.RecordText();
      }
    }
  }

 private:
  // An operation that succeeded in spite of the failure may have missed the closing alone.
  void ExpectOnlyClosingIsForgiven(bool succeeded) const {
    for (const std::string& line : driver_.Record()) {
      const bool failed =
          line.find(" sta 8100 ") != std::string::npos || line.find(" sta C100 ") != std::string::npos;
      const bool may_fail = line.find(" ibonl(") != std::string::npos || forgives_lines_;
      EXPECT_FALSE(failed && succeeded && !may_fail) << driver_.RecordText();
    }
  }

 protected:
  // Whether a command or a reply may fail without consequence, as during a detection.
  bool forgives_lines_ = false;
};

// A communication object with the meter at its address.
struct QueryClient {
  QueryClient() : comm(Create<_CKespCommObj>(__uuidof(CKespCommObj))) {
    EXPECT_EQ(WriteByReference(comm, &_CKespCommObj::put_CommStyle, csIEEE), S_OK);
    ComPtr<_CKespIEEE> transport;
    EXPECT_EQ(ReadObject(comm, &_CKespCommObj::get_CommObject).As(&transport), S_OK);
    IeeeClient settings(transport);
  }
  bool Query() {
    Text reply;
    VARIANT_BOOL answer = 5;
    EXPECT_EQ(comm->Query(reply.in_out(), Text(L"*IDN?").get(), nullptr, nullptr, &answer), S_OK);
    EXPECT_TRUE(answer != VARIANT_TRUE || reply.str() == L"KESP,GP488,SIM48805,2.0\n")
        << testing::PrintToString(reply.str());
    ExpectStatusOf(answer == VARIANT_TRUE);
    return answer == VARIANT_TRUE;
  }
  bool Update() {
    VARIANT_BOOL answer = 5;
    EXPECT_EQ(comm->Update(Text(L"SETP 20").get(), nullptr, nullptr, &answer), S_OK);
    ExpectStatusOf(answer == VARIANT_TRUE);
    return answer == VARIANT_TRUE;
  }
  void ExpectStatusOf(bool success) {
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommError) == cfrSuccess, success);
    EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorDescr).empty(), success);
  }

  ComPtr<_CKespCommObj> comm;
};

bool Converse(IeeeClient& client) {
  bool all = client.Initialize() == kDone;
  all = client.WriteLine(L"*IDN?") == kDone && all;
  all = client.ReadLine() == kDone && all;
  // Once more after a failed closing, as a careful client does.
  if (client.Uninitialize() != kDone) client.Uninitialize();
  return all;
}

bool Detect(IeeeClient& client) {
  Text result;
  VARIANT_BOOL found = 5;
  const Refusal refusal =
      RefusalOf(client.object->AutoDetect(result.in_out(), dlCommonCommands, soFindFirst, &found));
  EXPECT_EQ(client.TimeOut(), to3s);
  EXPECT_EQ(client.Address(), found == VARIANT_TRUE ? 2 : 5);
  EXPECT_EQ(result.str(), found == VARIANT_TRUE ? L"KESP\n" : L"");
  return refusal == kDone && found == VARIANT_TRUE;
}

bool DetectAgain(IeeeClient& client) {
  client.SetAddress(5);
  return Detect(client);
}

TEST_F(GpibFaultsTest, Query) {
  Sweep<QueryClient>(
      kMeter, [](QueryClient& client) { return client.Query(); },
      [](QueryClient& client) { return client.Query(); });
}

TEST_F(GpibFaultsTest, Update) {
  Sweep<QueryClient>(
      kMeter, [](QueryClient& client) { return client.Update(); },
      [](QueryClient& client) { return client.Query(); });
}

TEST_F(GpibFaultsTest, SingleSteps) {
  Sweep<IeeeClient>(kMeter, &Converse, &Converse);
}

// Both commands are answered, so that one of them can fail.
TEST_F(GpibFaultsTest, AutoDetect) {
  forgives_lines_ = true;
  Sweep<IeeeClient>(R"({"gpib": {"primary": 2}, "commands": {"*IDN?": "KESP", "*VER": "KESP"}})", &Detect,
                    &DetectAgain);
}

}  // namespace
}  // namespace kesp::clients
