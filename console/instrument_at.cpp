// From the options to the instrument.
#include "console/instrument_at.h"

#include <utility>

namespace kesp::console {

std::unique_ptr<Instrument> InstrumentAt(const TalkOptions& talk, Surroundings& around, Tuning tuning) {
  const Address address = ParseAddress(talk.address);
  tuning.timeout_ms = talk.timeout_ms;
  tuning.trace = talk.trace;
  return around.library().At(address, tuning);
}

}  // namespace kesp::console
