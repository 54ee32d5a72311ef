// Members of the library's Windows half that are not written yet.
#include "console/instrument_win.h"
#include "console/library_win.h"
#include "console/usage_error.h"

namespace kesp::console {

std::optional<std::string> InstrumentWin::Detect(DetectLevel, const OnDetectionStep&) {
  throw UsageError("not written yet");
}
Transfer InstrumentWin::Download(const std::string&, const OnTransfer&) {
  throw UsageError("not written yet");
}
bool InstrumentWin::Edit() {
  throw UsageError("not written yet");
}
std::vector<FoundInstrument> LibraryWin::Discover(const std::string&, const OnDetectionStep&) {
  throw UsageError("not written yet");
}

}  // namespace kesp::console
