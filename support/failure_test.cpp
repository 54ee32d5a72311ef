// Tests of the failure type and of the failures with fixed numbers.
#include "support/failure.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace kesp {
namespace {

// CurrentFailure() inside the handler of what the step throws.
template <typename Step>
Failure Caught(Step step) {
  try {
    step();
  } catch (...) {
    return CurrentFailure();
  }
  return {-1, L"", L"nothing was thrown"};
}

TEST(Failure, Made_HoldsNumberSourceAndDescription) {
  const Failure failure(8005, L"[here]", L"Port already open");
  EXPECT_EQ(failure.number(), 8005);
  EXPECT_EQ(failure.source(), L"[here]");
  EXPECT_EQ(failure.description(), L"Port already open");
}

TEST(Failure, What_IsTheDescriptionInAscii) {
  EXPECT_STREQ(Failure(1, L"", L"20 \u00B0C").what(), "20 ?C");
}

TEST(Failure, RuntimeFailures_HaveTheNumbersThatClientsKnow) {
  struct Case {
    Failure failure;
    std::int32_t number;
    const wchar_t* description;
  };
  const Case cases[] = {
      {InvalidCall(), 5, L"Invalid procedure call or argument"},
      {Overflow(), 6, L"Overflow"},
      {OutOfMemory(), 7, L"Out of memory"},
      {OutOfRange(), 9, L"Subscript out of range"},
      {TypeMismatch(), 13, L"Type mismatch"},
      {KeyAlreadyInUse(), 457, L"This key is already associated with an element of this collection"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.failure.number(), c.number);
    EXPECT_EQ(c.failure.description(), c.description);
    EXPECT_EQ(c.failure.source(), L"KespCommObj");
  }
}

TEST(CurrentFailure, Failure_IsItself) {
  const Failure failure = Caught([] { throw Failure(230, L"[there]", L"text"); });
  EXPECT_EQ(failure.number(), 230);
  EXPECT_EQ(failure.source(), L"[there]");
  EXPECT_EQ(failure.description(), L"text");
}

TEST(CurrentFailure, BadAlloc_IsOutOfMemory) {
  EXPECT_EQ(Caught([] { throw std::bad_alloc(); }).number(), 7);
}

TEST(CurrentFailure, OtherException_IsInternalErrorWithItsText) {
  const Failure failure = Caught([] { throw std::runtime_error("odd"); });
  EXPECT_EQ(failure.number(), 51);
  EXPECT_EQ(failure.description(), L"Internal error (odd)");
}

TEST(CurrentFailure, SomethingElse_IsInternalError) {
  const Failure failure = Caught([] { throw 1; });
  EXPECT_EQ(failure.number(), 51);
  EXPECT_EQ(failure.description(), L"Internal error");
}

}  // namespace
}  // namespace kesp
