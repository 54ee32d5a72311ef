// "kesp edit": the settings dialog.
#include "console/commands.h"
#include "console/instrument_at.h"
#include "console/usage_error.h"

namespace kesp::console {

int Run(const EditOptions& options, Surroundings& around) {
  if (std::holds_alternative<GpibAddress>(ParseAddress(options.talk.address))) {
    throw UsageError(
        "the GPIB has no settings dialog; its settings stand in the address, as in gpib:5,eos=13");
  }
  const auto instrument = InstrumentAt(options.talk, around);
  // The dialog hears nothing of Ctrl-C.
  around.console.SetOnInterrupt(Console::OnInterrupt::kEnd);
  if (!instrument->Edit()) {
    around.console.WriteError("kesp: the dialog was cancelled\n");
    return kExitFailed;
  }
  around.console.Write(TextOf(instrument->address()) + "\n");
  return kExitDone;
}

}  // namespace kesp::console
