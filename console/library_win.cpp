// The library's instruments.
#include "console/library_win.h"

#include "console/instrument_win.h"

namespace kesp::console {

std::unique_ptr<Instrument> LibraryWin::At(const Address& address, const Tuning& tuning) {
  return std::make_unique<InstrumentWin>(source_.Create<_CKespCommObj>(__uuidof(CKespCommObj)), address,
                                         tuning);
}

}  // namespace kesp::console
