// A failure swept over every driver call of the transport's operations: errors are right, and no device stays
// open.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "gpib/kesp_ieee_fixture.h"
#include "support/attempt.h"
#include "support/failure.h"

namespace kesp {
namespace {

// An object with its own driver, new for each round of a sweep. Only the device at 3 answers, and only "t".
struct Stage {
  Stage() {
    ieee.SetEOSChar(L"10");
    bus.knows_descriptors = true;
    bus.on_call = [this](const std::string& call) {
      if (call.starts_with("ibdev(")) address = std::stoi(call.substr(8));
      if (call.starts_with("ibclr(")) bus.waiting.clear();
      if (call.ends_with(",t\n)") && address == 3) bus.waiting = "+021.5";
    };
  }

  int address = 0;
  EnvironmentFake environment;
  GpibDriverFake bus;
  GpibThreadsFake threads;
  GpibDriver driver{bus, threads};
  CKespIEEE ieee{environment.environment, driver};
};

using Operation = std::function<void(Stage&)>;

// Runs the operation once undisturbed and then once for each driver call that it made, with that call
// failing. Returns the number of calls and adds the errors raised to `numbers`.
int Sweep(const Operation& operation, std::set<std::int32_t>& numbers) {
  int calls = 0;
  {
    Stage undisturbed;
    operation(undisturbed);
    calls = undisturbed.bus.faults.calls();
  }
  for (int nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    stage.bus.faults.Fail(nth);
    numbers.insert(RaisedBy([&] { operation(stage); }).number);
    EXPECT_EQ(stage.ieee.TimeOutSecs(), ETimeOutSecs::to3s);
    Try([&] { return stage.ieee.Uninitialize(); });
    EXPECT_TRUE(stage.bus.open.empty()) << stage.bus.open.size();
    EXPECT_TRUE(stage.ieee.Initialize());
    if (testing::Test::HasFailure()) break;  // one report is enough
  }
  return calls;
}

TEST(CKespIEEEFaultsTest, Exchange_AnyDriverCallFails_RaisesItsErrorAndLeavesNothingOpen) {
  std::set<std::int32_t> numbers;
  const int calls = Sweep(
      [](Stage& stage) {
        stage.ieee.SetPrimaryAddress(3);
        stage.ieee.Initialize();
        stage.ieee.WriteLine(L"t");
        std::wstring reply;
        stage.ieee.ReadLine(reply);
        EXPECT_EQ(reply, L"+021.5");
        stage.ieee.Uninitialize();
      },
      numbers);
  EXPECT_EQ(calls, 7);
  EXPECT_EQ(numbers,
            (std::set<std::int32_t>{ieee_error::ERR_IBDEV, ieee_error::ERR_IBCLR, ieee_error::ERR_IBEOS,
                                    ieee_error::ERR_IBWRT, ieee_error::ERR_IBRD, ieee_error::ERR_IBONL}));
}

TEST(CKespIEEEFaultsTest, AutoDetect_AnyDriverCallFails_OnlyOpeningRaisesAndAllIsClosed) {
  std::set<std::int32_t> numbers;
  const int calls = Sweep(
      [](Stage& stage) {
        std::wstring result;
        bool found = false;
        const Raised raised = RaisedBy([&] { found = stage.ieee.AutoDetect(result); });
        EXPECT_EQ(stage.ieee.PrimaryAddress(), found ? 3 : 1);
        EXPECT_EQ(result, found ? L"+021.5" : L"");
        if (raised.number != 0) throw Failure(raised.number, raised.source, raised.description);
      },
      numbers);
  EXPECT_GT(calls, 30);
  EXPECT_EQ(numbers,
            (std::set<std::int32_t>{0, ieee_error::ERR_IBDEV, ieee_error::ERR_IBCLR, ieee_error::ERR_IBEOS}));
}

}  // namespace
}  // namespace kesp
