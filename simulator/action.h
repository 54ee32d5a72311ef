// What the simulated instrument can do in answer to a command.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace kesp::simulator {

// Sends these bytes as one piece.
struct Send {
  std::string bytes;
};

// Sends these bytes in `pieces` pieces of about the same length (one byte each where there are fewer bytes
// than pieces), with a pause between one piece and the next.
struct SendPieces {
  std::string bytes;
  std::size_t pieces = 1;
  std::chrono::milliseconds gap{0};
};

// Sends `total` bytes, the pattern over and over, in large blocks, and then `end`.
struct SendRepeated {
  std::string pattern;
  std::size_t total = 0;
  std::string end;
};

// Sends the command itself, as received and without its terminator, and then `end`.
struct Echo {
  std::string end;
};

// Sends digits without any terminator for that time, or until the client leaves.
struct Flood {
  std::chrono::milliseconds length{0};
};

struct Wait {
  std::chrono::milliseconds length{0};
};

// Keeps everything that this list sends back, and sends it in one piece with the next thing that is sent.
struct HoldForNext {};

// On a bus: the byte with which a serial poll is answered from now on.
struct SetStatusByte {
  std::uint8_t value = 0;
};

// Ends the connection: kClose after everything sent has gone out, kReset with a reset and at once.
enum class Ending { kClose, kReset };

using Action =
    std::variant<Send, SendPieces, SendRepeated, Echo, Flood, Wait, HoldForNext, SetStatusByte, Ending>;
using ActionList = std::vector<Action>;

// The lists of actions that a command is answered with in turn; the first follows the last. Never without
// a list; one empty list is no answer at all.
struct Answer {
  std::vector<ActionList> turns = std::vector<ActionList>(1);
};

}  // namespace kesp::simulator
