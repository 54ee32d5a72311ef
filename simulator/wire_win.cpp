// "kesp-sim wire" on Windows, where no program can make a serial line.
#include "simulator/description_error.h"
#include "simulator/wire.h"

namespace kesp::simulator {

void ServeWire(const Options& /*options*/) {
  throw DescriptionError("wire works on Linux only; on Windows use a pair of COM ports that are joined");
}

}  // namespace kesp::simulator
