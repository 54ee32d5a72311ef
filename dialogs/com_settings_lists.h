// The contents of the lists of the RS-232 dialog that are always the same.
#pragma once

#include <vector>

#include "dialogs/controls.h"
#include "support/enumerations.h"

namespace kesp {

std::vector<ChoiceList::Entry> ParityEntries();
std::vector<ChoiceList::Entry> DataBitsEntries();
std::vector<ChoiceList::Entry> StopBitsEntries();

// The controllers that are still offered; the others can be set by a program only.
std::vector<ChoiceList::Entry> ControllerStyleEntries();

// The models of the port switch that are still offered, each with its picture.
std::vector<ChoiceList::Entry> SmartSwitchStyleEntries();

// The rates from the one to the other, both included, with their names. "<unknown>" for brNone.
std::vector<ChoiceList::Entry> BaudRateEntries(EKespBaudRate3 minimum, EKespBaudRate3 maximum);

}  // namespace kesp
