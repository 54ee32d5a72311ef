// The doctor's rules about Windows, VBScript and Office.
#include "console/doctor.h"
#include "console/served_library.h"
#include "console/width_text.h"

namespace kesp::console {

Findings SystemFindings(Machine& machine) {
  const SystemFacts system = machine.System();
  return {Well("Windows", system.windows + ", " + WidthText(system.windows_bits)),
          Well("Processor", system.processor + ", " + system.architecture),
          Well("This program",
               WidthText(system.program_bits) + ", runs " +
                   (system.elevated ? "as administrator" : "with the rights of an ordinary user"))};
}

Findings ScriptFindings(Machine& machine, int bits) {
  const std::string subject = WidthText(bits) + " VBScript";
  if (machine.HasVbScript(bits)) return {Well(subject, "is installed")};
  return {Warning(subject, "is not installed: .vbs files do not run",
                  "Windows 11 24H2 and later, as administrator: DISM /Online /Add-Capability "
                  "/CapabilityName:VBSCRIPT~~~~; an earlier Windows has it unless somebody took it out")};
}

Findings OfficeFindings(Machine& machine) {
  const auto office = machine.InstalledOffice();
  if (!office) return {Well("Office", "is not installed")};
  const std::string text = office->version + ", " + WidthText(office->bits);
  const ServedLibrary served = LibraryFor(Client::kOrdinary, machine.RegistrationsFor(office->bits));
  if (!served.IsNone())
    return {Well("Office", text + "; its VBA uses the " + WidthText(office->bits) + " library")};
  return {Warning(
      "Office", text + "; its VBA needs the " + WidthText(office->bits) + " library, which is not registered",
      RegisterRemedy(machine.System(), office->bits, Hive::kAllUsers,
                     machine.DeliveredLibrary(office->bits)))};
}

}  // namespace kesp::console
