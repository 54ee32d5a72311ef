// "kesp send": commands without replies.
#include "console/commands.h"
#include "console/device_address.h"
#include "console/hint.h"
#include "console/instrument_at.h"

namespace kesp::console {

int Run(const SendOptions& options, Surroundings& around) {
  const Address address = ParseDeviceAddress(options.talk.address);
  Tuning tuning;
  tuning.keep_open = options.commands.size() > 1;
  const auto instrument = InstrumentAt(options.talk, around, tuning);
  around.console.SetOnInterrupt(Console::OnInterrupt::kEnd);
  try {
    for (const std::string& command : options.commands) instrument->Update(command);
  } catch (LibraryError& error) {
    error.hint = HintFor(error, address);
    throw;
  }
  return kExitDone;
}

}  // namespace kesp::console
