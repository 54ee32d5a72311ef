// What this machine is and has, as data; nothing is judged here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console/file_facts.h"
#include "console/gpib_file.h"
#include "console/library_report.h"
#include "console/network_adapter.h"
#include "console/port_device.h"
#include "console/registration_entry.h"
#include "console/system_facts.h"

namespace kesp::console {

// Texts are UTF-8. `bits` is 64 or 32; where Windows runs no programs of that width, what is told is empty.
// Nothing throws but for want of memory: what cannot be read is missing from the answer.
class Machine {
 public:
  virtual ~Machine() = default;

  // COM ports. No port is opened but by Probe, which closes it again.
  virtual std::vector<PortDevice> Ports() = 0;
  virtual PortUse Probe(const std::string& name) = 0;

  virtual SystemFacts System() = 0;
  // In the order of their metrics.
  virtual std::vector<NetworkAdapter> NetworkAdapters() = 0;
  virtual std::optional<Office> InstalledOffice() = 0;
  virtual bool HasVbScript(int bits) = 0;

  // What registries hold for programs of that width.
  virtual Registrations RegistrationsFor(int bits) = 0;
  // The library that was delivered with this program: of its own width the one beside it. Empty where it is
  // not.
  virtual std::string DeliveredLibrary(int bits) = 0;
  // Nothing where there is no such file.
  virtual std::optional<FileFacts> FactsOf(const std::string& path) = 0;
  // Whether this user can append to that file, or make it where it is not there.
  virtual bool CanAppendTo(const std::string& path) = 0;

  // Files of the names that a driver has for that width, in the order in which the library looks.
  virtual std::vector<GpibFile> GpibFiles(int bits) = 0;

  // Creates the classes of the library in that file; they are those of this program's own width.
  virtual LibraryReport Examine(const std::string& path) = 0;
  // Creates the registered classes, as any client of this program's width does. library: the file that the
  // registry names for them.
  virtual LibraryReport ExamineRegistered(const std::string& library) = 0;

  // Starts the kesp.exe of the other width with "doctor --json --this-width-only".
  virtual OtherProgram AskOther() = 0;
};

}  // namespace kesp::console
