// The buses that need no file: the built-in one, and the one that fails.
#include "simulator/description.h"
#include "simulator/gpib/status_word.h"

namespace kesp::simulator::gpib {
namespace {

constexpr char kText[] = R"({
  "devices": [{
    "gpib": {"primary": 5},
    "commands": {
      "*IDN?": "KESP,GP488,SIM48805,1.0",
      "*VER": "1.0",
      "t": "21.5",
      "MEAS?": {"cycle": ["+021.48", "+021.50", "+021.53", "+021.51"]},
      "SETP?": "+022.00",
      "SETP *": null,
      "LOG?": "+021.40,+021.41,+021.43,+021.44,+021.44,+021.46,+021.47,+021.47,+021.48,+021.48,+021.50,+021.51,+021.53,+021.52,+021.51,+021.50"
    },
    "default": "ERR 02 UNKNOWN COMMAND"
  }]
})";

}  // namespace

BusDescription BuiltInBus() {
  return ReadBus(kText);
}

BusDescription UnusableBus() {
  BusDescription bus;
  Failure failure;
  failure.error = kFileSystemError;
  bus.failures.push_back(failure);
  return bus;
}

}  // namespace kesp::simulator::gpib
