// The driver's time-outs, in real time.
#include <chrono>

#include "tests/clients/gpib_fixture.h"

namespace kesp::clients {
namespace {

using std::chrono::milliseconds;

// What a machine that is busy elsewhere may need beyond the time-out.
constexpr milliseconds kPatience(5000);

class GpibTimeoutsTest : public GpibStage {
 protected:
  static constexpr const wchar_t* kAborted = L"6 - I/O operation aborted";

  void Open(ETimeOutSecs code) {
    ieee_.SetTimeOut(code);
    EXPECT_EQ(ieee_.Initialize(), kDone);
  }
  // Expects a read to run into the time-out.
  void ExpectSilenceFor(milliseconds time_out) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ieee_.ReadLine(),
              (Refusal{ERR_IBRD, kReadingSource, DriverError(L"ibrd() on device 1", kAborted)}));
    const auto taken = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
    EXPECT_GE(taken.count(), time_out.count() * 9 / 10);
    EXPECT_LE(taken.count(), (time_out + kPatience).count());
  }
};

GPIB_TEST(GpibTimeoutsTest, TenthOfASecond_ThenWorksOn) {
  Open(to100ms);
  ExpectSilenceFor(milliseconds(100));
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
  ExpectSilenceFor(milliseconds(100));
}

GPIB_TEST(GpibTimeoutsTest, Second_ThenWorksOn) {
  Open(to1s);
  ExpectSilenceFor(milliseconds(1000));
  EXPECT_EQ(ieee_.Exchange(L"*IDN?"), L"KESP,GP488,SIM48805,2.0\n");
}

GPIB_TEST(GpibTimeoutsTest, CommandWithoutReply_IsThatReadsTimeOut) {
  Open(to100ms);
  EXPECT_EQ(ieee_.WriteLine(L"SETP 20"), kDone);
  ExpectSilenceFor(milliseconds(100));
}

GPIB_TEST(GpibTimeoutsTest, NoDeviceAtTheAddress_WriteFailsAtOnce) {
  ieee_.SetAddress(9);
  Open(to1000s);
  EXPECT_EQ(ieee_.WriteLine(L"t"), (Refusal{ERR_IBWRT, kWritingSource,
                                            DriverError(L"ibwrt() with command 't' on device 1",
                                                        L"2 - Write function detected no listeners")}));
}

GPIB_TEST(GpibTimeoutsTest, SlowReply_IsWaitedFor) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 5}, "delay_ms": 400, "commands": {"t": "23.5"}})"));
  Open(toNone);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(ieee_.Exchange(L"t"), L"23.5\n");
  EXPECT_GE(std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin).count(), 360);
}

GPIB_TEST(GpibTimeoutsTest, ReplyAfterTheTimeOut_IsReadByALaterRead) {
  driver_.Load(BusWith(R"({"gpib": {"primary": 5}, "delay_ms": 400, "commands": {"t": "23.5"}})"));
  Open(to100ms);
  EXPECT_EQ(ieee_.WriteLine(L"t"), kDone);
  ExpectSilenceFor(milliseconds(100));
  EXPECT_TRUE(PumpUntil([&] { return ieee_.ReadLine() == kDone; }));
  EXPECT_EQ(ieee_.reply.str(), L"23.5\n");
}

}  // namespace
}  // namespace kesp::clients
