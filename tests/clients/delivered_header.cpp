// A client that includes the delivered header and uses what it says of enumerations, errors and defaults.
#include "KespCommObj.h"

namespace {

// The key of an instrument in a collection is the one argument with a default in C++.
[[maybe_unused]] HRESULT AddWithoutKey(_CInstruments* instruments, _CInstrument* instrument) {
  return instruments->AddReference(instrument);
}

static_assert(ERR_INVALID_COM_PORT == -2147221302 && COMPORT3_ERR_INVALID_COM_PORT == -2147221284);
static_assert(PARITY_SPACE == 4, "no macro of the Windows headers");

}  // namespace
