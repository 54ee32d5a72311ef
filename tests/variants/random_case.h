// A short random life of one object, lived twice: in the library's hands and in those of the second opinion.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/variants/argument_list.h"
#include "tests/variants/harmless_state.h"
#include "tests/variants/second_opinion.h"

namespace kesp::variants {

// What the cases have in common, and what they find out.
struct Surroundings {
  std::vector<PublicClass> classes;
  Device device;
  // Each world has a COM port of its own, since a port can be open once only. Every other case may open it.
  short our_port = kNoPort;
  short their_port = kNoPort;
  std::uint64_t seed = 1;
  bool with_dialogs = false;
  // Who makes the calls: both, each in its own world, or one alone, to see what it leaves behind.
  enum class Callers { kBoth, kLibrary, kSecondOpinion };
  Callers callers = Callers::kBoth;
  // Prints each call.
  bool tells_calls = false;
  // Of a case that is lived again nothing is counted.
  bool counts = true;

  // Calls of Invoke by what came of them.
  struct Use {
    unsigned long succeeded = 0;
    unsigned long raised = 0;   // the member's own code ended in an exception
    unsigned long refused = 0;  // for its arguments, or because there is no such member

    unsigned long calls() const { return succeeded + raised + refused; }
  };
  std::map<std::wstring, Use> uses;  // by class, member and kind
  Use all;
  unsigned long look_ups = 0;  // of names
};

// "CKespTCP.Port put"
std::wstring NameOf(const PublicClass& one, const Member& member);

struct Life {
  std::vector<std::wstring> findings;  // what was not as it must be, one line each
  bool is_holding = false;             // whether a reference to an object was kept
  std::wstring last_call;              // the member
};

inline constexpr unsigned kCallsOfACase = 30;

// Lives the case of that number, or the first of its calls.
Life LiveCase(Surroundings& surroundings, std::uint64_t number, unsigned most_calls = kCallsOfACase);

}  // namespace kesp::variants
