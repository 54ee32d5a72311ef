// Texts that describe a bus to the simulated GPIB driver, put together from their parts.
#pragma once

#include <string>

namespace kesp::clients {

// What stands at address 5 in most tests. No reply holds the character "1", at which reads end with an
// EOSChar of "10", but for that of MODEL?.
inline constexpr char kMeter[] = R"({
  "gpib": {"primary": 5},
  "commands": {
    "*IDN?": "KESP,GP488,SIM48805,2.0",
    "MODEL?": "KESP,7100",
    "SETP *": null
  }
})";

// A bus with these devices. `more` holds further fields, as in "registration": [1].
inline std::string BusWith(const std::string& devices, const std::string& more = {}) {
  return "{\"devices\": [" + devices + "]" + (more.empty() ? "" : ", " + more) + "}";
}

// A bus with the meter.
inline std::string MeterBus(const std::string& more = {}) {
  return BusWith(kMeter, more);
}

// The fields of a failure: of the call of that name, or "*" for any; of the at-th such call, or each with 0.
inline std::string Failing(const std::string& call, int at, const std::string& outcome = "\"error\": 14") {
  const std::string when = at == 0 ? "" : ", \"at\": " + std::to_string(at);
  return "{\"call\": \"" + call + "\"" + when + ", " + outcome + "}";
}

// The field that holds failures.
inline std::string Failures(const std::string& failures) {
  return "\"failures\": [" + failures + "]";
}

}  // namespace kesp::clients
