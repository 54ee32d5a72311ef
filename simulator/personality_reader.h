// Reads an instrument: which answers it gives to which commands.
#pragma once

#include "simulator/action_reader.h"
#include "simulator/fields.h"
#include "simulator/personality.h"

namespace kesp::simulator {

// An instrument with an address is one on a bus, also when it has a line of its own, too.
Personality ReadPersonality(const Entry& entry, Place place);
// The same of an object that may have further members, which the caller asks for.
Personality ReadPersonality(Fields& fields, Place place);

// The settings of an instrument's serial line.
LineRule ReadLineRule(const Entry& entry);

}  // namespace kesp::simulator
