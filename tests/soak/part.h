// Something that is done again and again.
#pragma once

#include <memory>
#include <string>

#include "tests/soak/resources.h"

namespace kesp::soak {

class Part {
 public:
  virtual ~Part() = default;

  // Does it once more and checks what comes of it; `number` counts from 0, and `calls` is how often it will
  // be done in this tenth, of which it is number `index`. Throws std::runtime_error when anything is wrong.
  virtual void Do(long number, long index, long calls) = 0;

  // Puts the part into the state in which every tenth is looked at.
  virtual void Rest() {}

  // What the system itself has lost so far by what the part did, whoever does it; it does not count as
  // growth.
  virtual Resources LostBySystem() const { return {}; }
};

// What the parts talk to.
struct Surroundings {
  std::string host;  // of the instrument on the network
  int port = 0;
  int com = 0;  // the COM port with an instrument
};

// Queries through one communication object over TCP, at a COM port or on the GPIB, each with a reply of its
// own.
std::unique_ptr<Part> MakeTcpQueries(const Surroundings& around);
std::unique_ptr<Part> MakeSerialQueries(const Surroundings& around);
std::unique_ptr<Part> MakeGpibQueries(const Surroundings& around);

// Objects of all classes in turn, made, used and released.
std::unique_ptr<Part> MakeObjects(const Surroundings& around);

// Settings dialogs, opened and closed.
std::unique_ptr<Part> MakeDialogs(const Surroundings& around);

}  // namespace kesp::soak
