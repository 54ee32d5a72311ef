// "kesp send": commands without replies.
#include "console/commands.h"
#include "console/device_address.h"
#include "console/instrument_at.h"

namespace kesp::console {

int Run(const SendOptions& options, Surroundings& around) {
  ParseDeviceAddress(options.talk.address);
  Tuning tuning;
  tuning.keep_open = options.commands.size() > 1;
  const auto instrument = InstrumentAt(options.talk, around, tuning);
  around.console.SetOnInterrupt(Console::OnInterrupt::kEnd);
  for (const std::string& command : options.commands) instrument->Update(command);
  return kExitDone;
}

}  // namespace kesp::console
