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
                  "as administrator: DISM /Online /Add-Capability /CapabilityName:VBSCRIPT~~~~")};
}

Findings OfficeFindings(Machine& machine) {
  const auto office = machine.InstalledOffice();
  if (!office) return {Well("Office", "is not installed")};
  const std::string text = office->version + ", " + WidthText(office->bits);
  const ServedLibrary served = LibraryFor(Client::kOrdinary, machine.RegistrationsFor(office->bits));
  if (!served.IsNone())
    return {Well("Office", text + "; its VBA uses the " + WidthText(office->bits) + " library")};
  const std::string library = machine.DeliveredLibrary(office->bits);
  return {Warning(
      "Office", text + "; its VBA needs the " + WidthText(office->bits) + " library, which is not registered",
      library.empty() ? "install the library with its setup program"
                      : RegisterCommand(machine.System(), office->bits, Hive::kAllUsers, library))};
}

}  // namespace kesp::console
