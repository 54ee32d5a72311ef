// The sweeps, and how many failures they have brought about.
#include "support/fault_sweep_fixture.h"

#include <algorithm>
#include <iostream>
#include <sstream>

#include "support/failing_allocation_fake.h"
#include "support/failure.h"
#include "support/failure_fixture.h"

namespace kesp {

namespace {

constexpr std::int32_t kOutOfMemory = 7;

class Figures final : public testing::Environment {
 public:
  void TearDown() override {
    if (at_seams != 0) std::cout << "figure faults injected at the seams = " << at_seams << "\n";
    if (of_allocations != 0) std::cout << "figure allocations failed = " << of_allocations << "\n";
  }

  int at_seams = 0;
  int of_allocations = 0;
};

// GoogleTest owns it.
Figures& figures = *static_cast<Figures*>(testing::AddGlobalTestEnvironment(new Figures));

const char* NameOf(FaultLength length) {
  return length == FaultLength::kOneCall ? "one call" : "all calls from one on";
}

// What reaches the border to the client.
Raised OutcomeOf(const SweptOperation& operation, FaultStage& stage) {
  try {
    operation.run(stage);
  } catch (...) {
    const PassingAllocations passing;
    return PartsOf(CurrentFailure());
  }
  return {};
}

void ExpectAfterwards(FaultStage& stage) {
  stage.ExpectWhole();
  stage.ExpectWorking();
}

void ExpectSource(const SweptOperation& operation, const Raised& raised) {
  if (raised.number == 0 || raised.number == kOutOfMemory) return;
  EXPECT_TRUE(raised.source.starts_with(operation.source)) << raised;
}

bool AllocationsAreCounted() {
  const FailingAllocation failing(0);
  std::string(1000, ' ').shrink_to_fit();
  return failing.calls() > 0;
}

}  // namespace

void ExpectWholeLog(const std::string& content) {
  std::istringstream lines(content);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(line.ends_with('\r') && !lines.eof()) << line;
    EXPECT_GE(std::count(line.begin(), line.end(), '\t'), 2) << line;
  }
}

void SweepSeams(const SweptOperation& operation) {
  std::set<std::int32_t> numbers;
  const std::size_t seams = operation.make_stage()->Seams().size();
  for (std::size_t index = 0; index < seams; ++index) {
    for (const FaultLength length : {FaultLength::kOneCall, FaultLength::kFromThenOn}) {
      for (int nth = 1;; ++nth) {
        const std::unique_ptr<FaultStage> stage = operation.make_stage();
        const FaultySeam seam = stage->Seams()[index];
        SCOPED_TRACE(std::string(seam.name) + ", " + NameOf(length) + ", " + std::to_string(nth));
        seam.arm();
        seam.faults.Fail(nth, length);
        const Raised raised = OutcomeOf(operation, *stage);
        const bool came_through = seam.faults.IsPending();
        seam.faults.Fail(0);
        numbers.insert(raised.number);
        EXPECT_TRUE(operation.numbers.contains(raised.number)) << raised;
        ExpectSource(operation, raised);
        ExpectAfterwards(*stage);
        if (testing::Test::HasFailure()) return;  // one report is enough
        if (came_through) break;
        ++figures.at_seams;
      }
    }
  }
  EXPECT_EQ(numbers, operation.numbers);
}

void SweepAllocations(const SweptOperation& operation) {
  ASSERT_TRUE(AllocationsAreCounted()) << "the program is not linked with failing_allocation_fake.cpp";
  for (const FaultLength length : {FaultLength::kOneCall, FaultLength::kFromThenOn}) {
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE("allocation, " + std::string(NameOf(length)) + ", " + std::to_string(nth));
      const std::unique_ptr<FaultStage> stage = operation.make_stage();
      Raised raised;
      int failed = 0;
      {
        const FailingAllocation failing(nth, length);
        raised = OutcomeOf(operation, *stage);
        failed = failing.failed();
      }
      EXPECT_TRUE(raised.number == kOutOfMemory || operation.numbers.contains(raised.number)) << raised;
      ExpectSource(operation, raised);
      ExpectAfterwards(*stage);
      if (testing::Test::HasFailure()) return;  // one report is enough
      if (failed == 0) break;
      ++figures.of_allocations;
    }
  }
}

}  // namespace kesp
