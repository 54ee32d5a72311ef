// The list of such cases, each with its reason.
#include "tests/faults/excuses.h"

#include <vector>

namespace kesp::faults {

namespace {

struct Excuse {
  const char* scenario;  // "*" for all
  const char* function;
  const char* reason;
};

constexpr const char* kThreadLibrary =
    "the thread library that is linked in calls abort() where Windows gives no handle or slot for a thread's "
    "data";

const std::vector<Excuse> kExcuses = {
    {"*", "DuplicateHandle", kThreadLibrary},
    {"*", "TlsAlloc", kThreadLibrary},
    {"*", "TlsSetValue", kThreadLibrary},
};

}  // namespace

const char* ExcuseFor(const std::string& scenario, const std::string& function) {
  for (const Excuse& excuse : kExcuses) {
    if (function == excuse.function && (scenario == excuse.scenario || std::string("*") == excuse.scenario)) {
      return excuse.reason;
    }
  }
  return nullptr;
}

}  // namespace kesp::faults
