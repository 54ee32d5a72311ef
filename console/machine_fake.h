// A machine whose facts a test writes down.
#pragma once

#include <map>
#include <set>

#include "console/machine.h"

namespace kesp::console {

class MachineFake : public Machine {
 public:
  std::vector<PortDevice> Ports() override { return ports; }
  PortUse Probe(const std::string& name) override;
  SystemFacts System() override { return system; }
  std::vector<NetworkAdapter> NetworkAdapters() override { return adapters; }
  std::optional<Office> InstalledOffice() override { return office; }
  bool HasVbScript(int bits) override { return vbscript.contains(bits); }
  Registrations RegistrationsFor(int bits) override { return registrations[bits]; }
  std::string DeliveredLibrary(int bits) override { return delivered[bits]; }
  std::optional<FileFacts> FactsOf(const std::string& path) override;
  bool CanAppendTo(const std::string&) override { return can_write; }
  std::vector<GpibFile> GpibFiles(int bits) override { return gpib_files[bits]; }
  LibraryReport Examine(const std::string& path) override;
  LibraryReport ExamineRegistered(const std::string&) override { return registered; }
  OtherProgram AskOther() override { return other; }

  // Registers all classes, and the type library.
  void Register(int bits, Hive hive, const std::string& library);

  std::vector<PortDevice> ports;
  std::map<std::string, PortUse> uses;
  std::vector<std::string> probed;
  SystemFacts system;
  std::vector<NetworkAdapter> adapters;
  std::optional<Office> office;
  std::set<int> vbscript = {64, 32};
  std::map<int, Registrations> registrations;
  std::map<int, std::string> delivered = {{64, R"(C:\kesp\win64\KespCommObj.dll)"},
                                          {32, R"(C:\kesp\win32\KespCommObj.dll)"}};
  std::map<std::string, FileFacts> files = {{R"(C:\kesp\win64\KespCommObj.dll)", {64, "1.0.0", "one"}},
                                            {R"(C:\kesp\win32\KespCommObj.dll)", {32, "1.0.0", "two"}}};
  bool can_write = true;
  std::map<int, std::vector<GpibFile>> gpib_files;
  LibraryReport beside;
  std::vector<std::string> examined;  // the files of each Examine
  LibraryReport registered;
  OtherProgram other;
};

// The ports of a test's machine: a built-in one, adapters of three makers, one that is not plugged in,
// Bluetooth.
std::vector<PortDevice> SomePorts();

}  // namespace kesp::console
