// Failures swept over an operation: each call of each seam fails in turn, and so does each allocation.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "support/failing_call_fake.h"

namespace kesp {

// One way in which a seam can fail.
struct FaultySeam {
  const char* name;
  FailingCallFake& faults;
  // Has its calls fail in this way.
  std::function<void()> arm = [] {};
};

// An object with its own world, new for each failure.
class FaultStage {
 public:
  virtual ~FaultStage() = default;
  virtual std::vector<FaultySeam> Seams() = 0;
  // What is so after an operation, whatever has failed in it.
  virtual void ExpectWhole() = 0;
  // The same object does a whole exchange, and nothing is open behind it.
  virtual void ExpectWorking() = 0;

  // Whether nothing has failed.
  bool Undisturbed();
};

// An operation as a sweep sees it.
struct SweptOperation {
  std::function<std::unique_ptr<FaultStage>()> make_stage;  // all that comes before the operation is done
  std::function<void(FaultStage&)> run;
  std::set<std::int32_t> numbers;  // of the errors that may come of a seam's failure; 0: none is raised
  std::wstring source;             // the beginning of their source
  std::function<void(FaultStage&)> check;  // what is so after this operation besides
};

// Lets the seams' calls fail, the first, the second and so on until the operation comes through: one call,
// and all from that one on until the operation ends. Each time it expects an error from the list, the stage
// whole, and the object working. Of the errors in the list each must have come. A sweep takes time with the
// square of the number of calls: unless the environment variable KESP_WHOLE_SWEEP is set (tools/sweep-seams),
// only every 23rd fails behind the first thirty.
void SweepSeams(const SweptOperation& operation);

// The same for the allocations of the operation, those of the fakes included: what stands behind a seam on
// Windows allocates, too. A failure raises number 7, or one of the list where it comes as the failure of a
// seam.
void SweepAllocations(const SweptOperation& operation);

// The log begins with the fake clock's time and ends with the end of a line.
void ExpectWholeLog(const std::string& content);

// A row in a table of operations of one class.
template <typename Stage>
struct FaultCase {
  const char* name;
  std::function<void(Stage&)> run;
  std::set<std::int32_t> numbers;
  std::wstring source = {};
  std::function<void(Stage&)> prepare = {};
  std::function<void(Stage&)> check = {};

  SweptOperation Operation() const {
    return {.make_stage =
                [this] {
                  auto stage = std::make_unique<Stage>();
                  if (prepare) prepare(*stage);
                  return stage;
                },
            .run = [this](FaultStage& stage) { run(static_cast<Stage&>(stage)); },
            .numbers = numbers,
            .source = source,
            .check =
                [this](FaultStage& stage) {
                  if (check) check(static_cast<Stage&>(stage));
                }};
  }
  friend void PrintTo(const FaultCase& fault_case, std::ostream* out) { *out << fault_case.name; }
};

// The name of a row, for INSTANTIATE_TEST_SUITE_P.
template <typename Stage>
std::string NameOf(const testing::TestParamInfo<FaultCase<Stage>>& info) {
  return info.param.name;
}

}  // namespace kesp
