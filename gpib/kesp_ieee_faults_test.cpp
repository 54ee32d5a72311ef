// Failures swept over the IEEE-488 transport: errors are right, no device stays open, and the object goes on
// working.
#include <gtest/gtest.h>

#include "gpib/kesp_ieee_fixture.h"
#include "support/attempt.h"
#include "support/fault_sweep_fixture.h"

namespace kesp {
namespace {

// Only the device at 3 answers, and only "t".
class IeeeStage final : public IeeeFixture, public FaultStage {
 public:
  using IeeeFixture::driver_;
  using IeeeFixture::environment_;
  using IeeeFixture::ieee_;

  IeeeStage() {
    ieee_.SetPrimaryAddress(3);
    ieee_.SetCreateLogFile(true);
    bus_.on_call = [this](const std::string& call) {
      if (call.starts_with("ibdev(")) address_ = std::stoi(call.substr(8));
      if (call.starts_with("ibclr(")) bus_.waiting.clear();
      if (call.ends_with(",t\n)") && address_ == 3) bus_.waiting = "+021.5";
    };
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    return {{"driver", bus_.faults},
            {"loading of the driver", bus_.loading},
            {"registration of the thread", bus_.registering},
            {"files out of memory", environment_.files.faults},
            {"files", environment_.files.faults, [this] { environment_.files.answers_failure = true; }},
            {"GUIDs", environment_.guids.faults}};
  }

  void ExpectWhole() override {
    EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
    ExpectWholeLog(environment_.files.Content(ieee_.LogFilename()));
    Try([&] { return ieee_.Uninitialize(); });
    EXPECT_EQ(bus_.open, bus_.kept_open);
  }

  void ExpectWorking() override {
    const std::set<int> kept_open = bus_.open;
    ieee_.SetPrimaryAddress(3);
    std::wstring reply;
    EXPECT_EQ(RaisedBy([&] {
                Exchange();
                ieee_.ReadLine(reply);
                ieee_.Uninitialize();
              }),
              Raised());
    EXPECT_EQ(reply, L"+021.5");
    EXPECT_EQ(bus_.open, kept_open);
  }

  void Exchange() {
    ieee_.Initialize();
    ieee_.WriteLine(L"t");
  }
  void Detect() { ieee_.AutoDetect(result_); }
  // The address is the device's, or the client's.
  void ExpectDetected() {
    const bool found = ieee_.PrimaryAddress() == 3;
    EXPECT_TRUE(found || ieee_.PrimaryAddress() == 1);
    EXPECT_EQ(result_, found ? L"+021.5" : L"");
    EXPECT_TRUE(found || !Undisturbed());
  }

  std::wstring result_;

 private:
  int address_ = 0;
};

using Case = FaultCase<IeeeStage>;

// Those of the opening, of a driver that cannot be loaded, and of one without a function.
const std::set<std::int32_t> kOpening = {
    0, 48, 453, ieee_error::ERR_IBDEV, ieee_error::ERR_IBCLR, ieee_error::ERR_IBEOS};

const Case kCases[] = {
    {.name = "Create",
     .run = [](IeeeStage& stage) { const CKespIEEE other(stage.environment_.environment, stage.driver_); },
     .numbers = {0}},
    {.name = "SetEOSChar",
     .run = [](IeeeStage& stage) { stage.ieee_.SetEOSChar(L"10, which is a line feed"); },
     .numbers = {0},
     .check = [](IeeeStage& stage) { stage.ieee_.SetEOSChar(L"10"); }},
    {.name = "SetLogFilename",
     .run = [](IeeeStage& stage) { stage.ieee_.SetLogFilename(L"C:\\Temp\\conversation.log"); },
     .numbers = {0}},
    {.name = "Initialize",
     .run = [](IeeeStage& stage) { stage.ieee_.Initialize(); },
     .numbers = kOpening,
     .source = L"[CKespIEEE - InitializeIEEEBoard()]"},
    {.name = "WriteLine",
     .run = [](IeeeStage& stage) { stage.ieee_.WriteLine(L"t"); },
     .numbers = {0, ieee_error::ERR_IBWRT},
     .source = L"[CKespIEEE - WriteLine()]",
     .prepare = [](IeeeStage& stage) { stage.ieee_.Initialize(); }},
    {.name = "ReadLine",
     .run = [](IeeeStage& stage) { stage.ieee_.ReadLine(stage.result_); },
     .numbers = {0, ieee_error::ERR_IBRD},
     .source = L"[CKespIEEE - ReadLine()]",
     .prepare = &IeeeStage::Exchange},
    {.name = "Uninitialize",
     .run = [](IeeeStage& stage) { stage.ieee_.Uninitialize(); },
     .numbers = {0, ieee_error::ERR_IBONL},
     .source = L"[CKespIEEE - InitializeIEEEBoard()]",
     .prepare = &IeeeStage::Exchange},
    {.name = "AutoDetect",
     .run = &IeeeStage::Detect,
     .numbers = kOpening,
     .source = L"[CKespIEEE - InitializeIEEEBoard()]",
     .prepare = [](IeeeStage& stage) { stage.ieee_.SetPrimaryAddress(1); },
     .check = &IeeeStage::ExpectDetected},
};

class CKespIEEEFaultsTest : public testing::TestWithParam<Case> {};

TEST_P(CKespIEEEFaultsTest, AnyCallFails_NothingStaysOpenAndObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}

TEST_P(CKespIEEEFaultsTest, AnyAllocationFails_NothingStaysOpenAndObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, CKespIEEEFaultsTest, testing::ValuesIn(kCases), NameOf<IeeeStage>);

}  // namespace
}  // namespace kesp
