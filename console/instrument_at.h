// The instrument that a command talks to.
#pragma once

#include "console/options.h"
#include "console/surroundings.h"

namespace kesp::console {

// At the address of the options, with their timeout and trace; `tuning` brings the rest.
std::unique_ptr<Instrument> InstrumentAt(const TalkOptions& talk, Surroundings& around, Tuning tuning = {});

}  // namespace kesp::console
