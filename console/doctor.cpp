// The doctor's round.
#include "console/doctor.h"

#include "console/finding_text.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

// What the registry and the files tell about a width, whoever asks.
Findings FromOutside(Machine& machine, int bits) {
  Findings findings = GpibFindings(machine, bits);
  Append(findings, ScriptFindings(machine, bits));
  Append(findings, TraceFindings(machine, bits));
  return findings;
}

Finding NotAsked(const OtherProgram& other, int bits) {
  const std::string subject = WidthText(bits) + " kesp";
  if (!other.found) {
    return Warning(subject,
                   (other.path.empty() ? "kesp.exe" : other.path) + " is not there: the " + WidthText(bits) +
                       " library was not tried out",
                   "keep the folders win64 and win32 side by side, as they were delivered");
  }
  return Warning(subject,
                 other.path + " did not answer: the " + WidthText(bits) + " library was not tried out",
                 "run it by hand: \"" + other.path + "\" doctor --this-width-only");
}

}  // namespace

Findings ThisWidth(Machine& machine) {
  const int bits = machine.System().program_bits;
  Findings findings = RegistrationFindings(machine, bits);
  Append(findings, LibraryFindings(machine));
  Append(findings, FromOutside(machine, bits));
  return findings;
}

Findings OtherWidth(Machine& machine) {
  const SystemFacts system = machine.System();
  if (!system.both_widths) return {};
  const OtherProgram other = machine.AskOther();
  if (auto findings = FindingsOf(other.output)) return *findings;
  const int bits = 96 - system.program_bits;
  Findings findings = RegistrationFindings(machine, bits);
  findings.push_back(NotAsked(other, bits));
  Append(findings, FromOutside(machine, bits));
  return findings;
}

Findings Everything(Machine& machine) {
  Findings findings = SystemFindings(machine);
  Append(findings, ThisWidth(machine));
  Append(findings, OtherWidth(machine));
  Append(findings, OfficeFindings(machine));
  Append(findings, PortFindings(machine));
  Append(findings, NetworkFindings(machine));
  return findings;
}

}  // namespace kesp::console
