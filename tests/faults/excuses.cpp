// The list of such cases, each with its reason.
#include "tests/faults/excuses.h"

#include <vector>

namespace kesp::faults {

namespace {

struct Excuse {
  const char* scenario;  // "*" for all
  const char* function;
  const char* broken;
  const char* reason;
};

constexpr const char* kThreadLibrary =
    "the thread library that is linked in calls abort() where Windows gives no handle or slot for a thread's "
    "data";

const std::vector<Excuse> kExcuses = {
    {"*", "DuplicateHandle", kEndOfProcess, kThreadLibrary},
    {"*", "TlsAlloc", kEndOfProcess, kThreadLibrary},
    {"*", "TlsSetValue", kEndOfProcess, kThreadLibrary},
    {"discovery", "InetPtonW", "blocks of the library +1",
     "the address is then looked up like a name; the system may still write the result of a look-up that was "
     "given up, so up to 256 buffers of them are kept"},
};

}  // namespace

const char* ExcuseFor(const std::string& scenario, const std::string& function, const std::string& broken) {
  for (const Excuse& excuse : kExcuses) {
    const bool is_scenario = scenario == excuse.scenario || std::string("*") == excuse.scenario;
    if (is_scenario && function == excuse.function && broken == excuse.broken) return excuse.reason;
  }
  return nullptr;
}

}  // namespace kesp::faults
