// What a call has come to, in words that can be compared.
#pragma once

#include <string>

#include "tests/variants/argument_list.h"
#include "tests/variants/second_opinion.h"

namespace kesp::variants {

// Which of the three places for answers the client gives.
struct Places {
  bool result = true;
  bool exception = true;
  bool bad_argument = true;
};

// Places for the answers to one call, with something in them that a call has to replace or leave alone.
class CallOutcome {
 public:
  CallOutcome(const Places& places, Call* call);
  ~CallOutcome();
  CallOutcome(const CallOutcome&) = delete;
  CallOutcome& operator=(const CallOutcome&) = delete;

  // After the call; takes the thread's error information.
  std::wstring InWords(HRESULT outcome, const ArgumentList* arguments, const Side& side) const;

  // Before the call and after it: what no call may change in the thread.
  static std::wstring ThreadInWords();

  // Empty when the result is as declared, or nothing after a failure.
  std::wstring WhatIsWrongWithTheResult(HRESULT outcome, const Member* member) const;

 private:
  const Places places_;
  VARIANT result_{};
  EXCEPINFO exception_{};
  UINT bad_argument_ = 999;
};

}  // namespace kesp::variants
