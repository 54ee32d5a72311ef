// What the program is asked to do.
//
//   random_arguments HOST PORT [--seed S] [--from CASE] [--calls N] [--dialogs] [--only CASE] [--list FILE]
//                    [--com N]
//
// At HOST and PORT a device sends each line back, and with --com so do two at the COM ports N and N + 1.
// Cases are numbered; --only lives one of them and tells it, --list those of a file before the others, one
// "SEED CASE" a line.
#pragma once

#include "tests/variants/harmless_state.h"

namespace kesp::variants {

struct Request {
  Device device;
  std::uint64_t seed = 1;
  std::uint64_t from = 1;
  unsigned long calls = 2000;
  std::uint64_t only = 0;
  std::string list;
  short com = kNoPort;
  bool with_dialogs = false;
};

// Throws std::runtime_error for a command line that is not so.
Request ReadRequest(int count, char** words);

}  // namespace kesp::variants
