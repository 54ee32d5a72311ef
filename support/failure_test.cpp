// Tests of the failure type and of the failures with fixed numbers.
#include "support/failure.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <tuple>

#include "support/failure_fixture.h"

namespace kesp {
namespace {

// CurrentFailure() inside the handler of what the step throws.
template <typename Step>
Raised Caught(Step step) {
  try {
    step();
  } catch (...) {
    return PartsOf(CurrentFailure());
  }
  return {-1, L"", L"nothing was thrown"};
}

TEST(FailureTest, What_IsTheDescriptionInAscii) {
  EXPECT_STREQ(Failure(1, L"", L"20 \u00B0C").what(), "20 ?C");
}

TEST(FailureTest, RuntimeFailures_HaveTheNumbersThatClientsKnow) {
  const std::tuple<Failure, std::int32_t, const wchar_t*> cases[] = {
      {InvalidCall(), 5, L"Invalid procedure call or argument"},
      {Overflow(), 6, L"Overflow"},
      {OutOfMemory(), 7, L"Out of memory"},
      {OutOfRange(), 9, L"Subscript out of range"},
      {TypeMismatch(), 13, L"Type mismatch"},
      {KeyAlreadyInUse(), 457, L"This key is already associated with an element of this collection"},
  };
  for (const auto& [failure, number, description] : cases) {
    EXPECT_EQ(PartsOf(failure), (Raised{number, L"KespCommObj", description}));
  }
}

TEST(CurrentFailureTest, WhateverWasThrown_IsAFailure) {
  EXPECT_EQ(Caught([] { throw Failure(230, L"[there]", L"text"); }), (Raised{230, L"[there]", L"text"}));
  EXPECT_EQ(Caught([] { throw std::bad_alloc(); }), (Raised{7, L"KespCommObj", L"Out of memory"}));
  EXPECT_EQ(Caught([] { throw std::runtime_error("odd"); }),
            (Raised{51, L"KespCommObj", L"Internal error (odd)"}));
  EXPECT_EQ(Caught([] { throw 1; }), (Raised{51, L"KespCommObj", L"Internal error"}));
}

}  // namespace
}  // namespace kesp
