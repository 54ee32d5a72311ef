// The doctor's rules about the library itself: its classes, its type library, its events, its trace.
#include "console/doctor.h"
#include "console/served_library.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

Finding Of(const std::string& subject, const Trial& trial, const std::string& good,
           const std::string& remedy) {
  if (trial.error.empty()) return Well(subject, good);
  return Fault(subject, trial.what + ": " + trial.error, remedy);
}

Findings Of(const std::string& subject, const LibraryReport& report, const std::string& remedy) {
  if (!report.error.empty()) return {Fault(subject, "cannot be loaded: " + report.error, remedy)};
  Findings findings;
  for (const Trial& trial : report.classes) {
    if (!trial.error.empty())
      findings.push_back(Fault(subject, trial.what + " cannot be created: " + trial.error, remedy));
  }
  if (findings.empty()) {
    findings.push_back(
        Well(subject, "each of its " + std::to_string(report.classes.size()) + " classes was created"));
  }
  findings.push_back(Of(subject, report.type_library, "its type library was loaded, and is its own", remedy));
  findings.push_back(Of(subject, report.event, "events were connected", remedy));
  return findings;
}

Findings Delivered(Machine& machine, int bits) {
  const std::string subject = WidthText(bits) + " library beside kesp";
  const std::string library = machine.DeliveredLibrary(bits);
  if (library.empty()) {
    return {Fault(subject, "KespCommObj.dll is not beside kesp.exe",
                  "copy the whole folder that was delivered, or use --registered")};
  }
  return Of(subject, machine.Examine(library), "copy " + library + " anew from what was delivered");
}

Findings ByRegistration(Machine& machine, int bits) {
  const SystemFacts system = machine.System();
  const Client client = system.elevated ? Client::kElevated : Client::kOrdinary;
  const ServedLibrary served = LibraryFor(client, machine.RegistrationsFor(bits));
  if (served.IsNone()) return {};
  return Of(WidthText(bits) + " registered library", machine.ExamineRegistered(served.libraries.front()),
            RegisterRemedy(system, bits, served.hive, served.libraries.front()));
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('\\') + 1);
}

}  // namespace

Findings LibraryFindings(Machine& machine) {
  const int bits = machine.System().program_bits;
  Findings findings = Delivered(machine, bits);
  Append(findings, ByRegistration(machine, bits));
  return findings;
}

Findings TraceFindings(Machine& machine, int bits) {
  const ServedLibrary served = LibraryFor(Client::kOrdinary, machine.RegistrationsFor(bits));
  const std::string library = served.IsNone() ? machine.DeliveredLibrary(bits) : served.libraries.front();
  if (library.empty()) return {};
  const std::string subject = WidthText(bits) + " default trace";
  const std::string file = FolderOf(library) + "commobjout.log";
  if (machine.CanAppendTo(file)) return {Well(subject, file + " can be written by this user")};
  return {Warning(subject, file + " cannot be written by this user",
                  "set DebugFilename to a file in a folder of your own; with kesp, --trace FILE")};
}

}  // namespace kesp::console
