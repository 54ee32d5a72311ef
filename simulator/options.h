// The command line of kesp-sim.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/address_range.h"

namespace kesp::simulator {

// The exit codes of the program.
inline constexpr int kExitDone = 0;
inline constexpr int kExitCannotListen = 1;  // nor open the serial line
inline constexpr int kExitBadInput = 2;      // a bad command line, description or path

// What the program is asked to do.
enum class Command { kServe, kWire, kCheck, kExample };

struct Options {
  Command command = Command::kServe;
  std::string file;  // the description; empty: the built-in one. Where to write an example; empty: to output
  std::string kind;  // of example
  std::uint16_t port = 0;  // 0: pick a free one
  std::string bind = "127.0.0.1";
  bool discovery = false;                      // answer discovery datagrams, too
  std::uint16_t discovery_port = 30718;        // 0: pick a free one
  std::optional<AddressRange> discovery_from;  // nothing: from the address of `bind`
  unsigned discovery_rate = 0;                 // datagrams a second; 0: no limit
  std::string serial;                          // the serial line; empty: serve over TCP
  std::string log;                             // a file; empty: none
  bool quiet = false;
  bool once = false;
};

// Either options, or what to print and the exit code (for --help and for mistakes).
struct ParsedOptions {
  std::optional<Options> options;
  int exit_code = kExitDone;
  std::string output;  // for standard output
  std::string error;   // for standard error
};

// arguments: the command line without the program's name.
ParsedOptions ParseOptions(std::vector<std::string> arguments);

}  // namespace kesp::simulator
