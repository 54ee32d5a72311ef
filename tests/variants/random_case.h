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
  std::uint64_t seed = 1;
  bool with_dialogs = false;
  // Lets the second opinion make both calls, to see what the automation library itself leaves behind.
  bool is_control = false;
  // Prints each call.
  bool tells_calls = false;

  struct Use {
    unsigned long calls = 0;
    unsigned long carried_out = 0;  // that reached the member's own code
  };
  std::map<std::wstring, Use> uses;  // by class, member and kind
  unsigned long calls = 0;
};

// "CKespTCP.Port put"
std::wstring NameOf(const PublicClass& one, const Member& member);

struct Life {
  std::vector<std::wstring> findings;  // what was not as it must be, one line each
  bool is_holding = false;             // whether a reference to an object was kept
};

// Lives the case of that number.
Life LiveCase(Surroundings& surroundings, std::uint64_t number);

}  // namespace kesp::variants
