// Failures swept over the logs and the error box: no old line is lost, and the next line is written.
#include <gtest/gtest.h>

#include "support/diagnostic_log.h"
#include "support/environment_fake.h"
#include "support/error_trap.h"
#include "support/fault_sweep_fixture.h"
#include "support/log.h"

namespace kesp {
namespace {

constexpr char kOld[] = "17/05/2024 12:34:56\t999\told\r\n";
constexpr char kNew[] = "17/05/2024 12:34:56\t1000000\tthe next line\r\n";

// A log with a line of yesterday.
class LogStage final : public FaultStage {
 public:
  LogStage() {
    fakes_.files.Put(path_, kOld, {2024, 5, 16});
    diagnostic_.Turn(true);
  }

  std::vector<FaultySeam> Seams() override {
    return {{"files out of memory", fakes_.files.faults},
            {"files", fakes_.files.faults, [this] { fakes_.files.answers_failure = true; }},
            {"user surface", fakes_.user.faults}};
  }

  void ExpectWhole() override {
    const std::string everything = fakes_.files.Content(path_ + L" 2024-05-16") + fakes_.files.Content(path_);
    EXPECT_TRUE(everything.starts_with(kOld)) << everything;
    ExpectWholeLog(everything);
  }

  void ExpectWorking() override {
    writer_.WriteWithDailyRollover(path_, L"the next line");
    EXPECT_TRUE(fakes_.files.Content(path_).ends_with(kNew));
  }

  void Write() { writer_.Write(path_, message_); }
  void RollOver() { writer_.WriteWithDailyRollover(path_, message_); }
  void WriteDiagnosis() {
    diagnostic_.Write([this] { return L"received " + message_; });
  }
  void ShowError() {
    EXPECT_FALSE(RunTrapped(fakes_.user, L"attempting to write a log",
                            []() -> bool { throw Failure(9, L"Log", L"Subscript out of range"); }));
  }

 private:
  const std::wstring path_ = L"C:\\Temp\\conversation.log";
  const std::wstring message_ = L"a line that is longer than a text keeps in itself";
  EnvironmentFake fakes_;
  LogWriter writer_{fakes_.clock, fakes_.files};
  DiagnosticLog diagnostic_{fakes_.clock, fakes_.files, path_};
};

using Case = FaultCase<LogStage>;

const Case kCases[] = {
    {.name = "Write", .run = &LogStage::Write, .numbers = {0}},
    {.name = "WriteWithDailyRollover", .run = &LogStage::RollOver, .numbers = {0}},
    {.name = "DiagnosticLog", .run = &LogStage::WriteDiagnosis, .numbers = {0}},
    // 7: even the error box fails.
    {.name = "ErrorBox", .run = &LogStage::ShowError, .numbers = {0, 7}},
};

class LogFaultsTest : public testing::TestWithParam<Case> {};

TEST_P(LogFaultsTest, AnyCallFails_NoOldLineIsLostAndTheNextIsWritten) {
  SweepSeams(GetParam().Operation());
}

TEST_P(LogFaultsTest, AnyAllocationFails_NoOldLineIsLostAndTheNextIsWritten) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, LogFaultsTest, testing::ValuesIn(kCases), NameOf<LogStage>);

}  // namespace
}  // namespace kesp
