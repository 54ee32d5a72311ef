// From the options to the instrument.
#include "console/instrument_at.h"

#include <utility>

#include "console/usb_address.h"

namespace kesp::console {

std::unique_ptr<Instrument> InstrumentAt(const TalkOptions& talk, Surroundings& around, Tuning tuning) {
  const Address address = WithPort(ParseAddress(talk.address), around.machine);
  tuning.timeout_ms = talk.timeout_ms;
  tuning.trace = talk.trace;
  return around.library().At(address, tuning);
}

}  // namespace kesp::console
