// The library's instruments.
#include "console/library_win.h"

#include "console/discovery_win.h"
#include "console/instrument_win.h"

namespace kesp::console {

std::unique_ptr<Instrument> LibraryWin::At(const Address& address, const Tuning& tuning) {
  return std::make_unique<InstrumentWin>(source_.Create<_CKespCommObj>(__uuidof(CKespCommObj)), address,
                                         tuning);
}

std::vector<FoundInstrument> LibraryWin::Discover(const std::string& trace, const OnDetectionStep& on_step) {
  const auto comm = source_.Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const auto tcp = Use<_CKespTCP>(comm.Get(), csTCPIP);
  StartTrace(comm.Get(), trace);
  return DiscoverBy(tcp.Get(), on_step);
}

}  // namespace kesp::console
