// "kesp doctor": what keeps the library from working here.
#include "console/commands.h"
#include "console/doctor.h"
#include "console/finding_text.h"

namespace kesp::console {

int Run(const DoctorOptions& options, Surroundings& around) {
  around.console.ShowProgress("looking ...");
  Findings findings = options.this_width_only ? ThisWidth(around.machine) : Everything(around.machine);
  around.console.ShowProgress("");
  HideUser(findings, around.machine.System().user_folders);
  around.console.Write(options.json ? JsonOf(findings) : PageOf(findings));
  return Count(findings, Level::kFail);
}

}  // namespace kesp::console
