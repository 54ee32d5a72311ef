// The COM object of one instrument.
#include "server/instrument_class.h"

namespace kesp {

namespace {

const ClassDescription kDescription{__uuidof(::CInstrument), __uuidof(::_CInstrument), nullptr};

}  // namespace

InstrumentClass::InstrumentClass() : AutomationObject(kDescription) {}

}  // namespace kesp
