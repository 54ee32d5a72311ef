// The sweeps, and how many failures they have brought about.
#include "support/fault_sweep_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "support/failing_allocation_fake.h"
#include "support/failure.h"
#include "support/failure_fixture.h"

namespace kesp {

namespace {

constexpr std::int32_t kOutOfMemory = 7;

// In a sweep that is not whole.
constexpr int kEach = 30;
constexpr int kStride = 23;

// Which call or allocation fails behind this one.
int Next(int nth) {
  const bool whole = std::getenv("KESP_WHOLE_SWEEP") != nullptr;
  return nth + (nth < kEach || whole ? 1 : kStride);
}

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

void ExpectAfterwards(const SweptOperation& operation, FaultStage& stage) {
  stage.ExpectWhole();
  operation.check(stage);
  stage.ExpectWorking();
}

void ExpectSource(const SweptOperation& operation, const Raised& raised) {
  if (raised.number == 0 || raised.source == L"KespCommObj" || raised.source.empty()) return;
  EXPECT_TRUE(raised.source.starts_with(operation.source)) << raised;
}

bool AllocationsAreCounted() {
  const FailingAllocation failing(0);
  std::string(1000, ' ').shrink_to_fit();
  return failing.calls() > 0;
}

}  // namespace

bool FaultStage::Undisturbed() {
  const std::vector<FaultySeam> seams = Seams();
  return allocations.calls.failures() == 0 &&
         std::all_of(seams.begin(), seams.end(),
                     [](const FaultySeam& seam) { return seam.faults.failures() == 0; });
}

void ExpectWholeLog(const std::string& content) {
  if (content.empty()) return;
  EXPECT_TRUE(content.starts_with("17/05/2024 12:34:56\t")) << content;
  EXPECT_TRUE(content.ends_with("\r\n")) << content;
}

void SweepSeams(const SweptOperation& operation) {
  allocations = {};
  std::set<std::int32_t> numbers;
  const std::size_t seams = operation.make_stage()->Seams().size();
  for (std::size_t index = 0; index < seams; ++index) {
    for (const FaultLength length : {FaultLength::kOneCall, FaultLength::kFromThenOn}) {
      for (int nth = 1;; nth = Next(nth)) {
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
        ExpectAfterwards(operation, *stage);
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
    for (int nth = 1;; nth = Next(nth)) {
      SCOPED_TRACE("allocation, " + std::string(NameOf(length)) + ", " + std::to_string(nth));
      const std::unique_ptr<FaultStage> stage = operation.make_stage();
      Raised raised;
      int failed = 0;
      {
        const FailingAllocation failing(nth, length);
        raised = OutcomeOf(operation, *stage);
        failed = failing.failures();
      }
      EXPECT_TRUE(raised.number == kOutOfMemory || operation.numbers.contains(raised.number)) << raised;
      ExpectSource(operation, raised);
      ExpectAfterwards(operation, *stage);
      if (testing::Test::HasFailure()) return;  // one report is enough
      if (failed == 0) break;
      ++figures.of_allocations;
    }
  }
}

}  // namespace kesp
