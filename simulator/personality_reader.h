// Reads an instrument: which answers it gives to which commands.
#pragma once

#include "simulator/action_reader.h"
#include "simulator/fields.h"
#include "simulator/personality.h"

namespace kesp::simulator {

Personality ReadPersonality(const Entry& entry, LineOwner line);

// The settings of an instrument's serial line.
LineRule ReadLineRule(const Entry& entry);

}  // namespace kesp::simulator
