// This machine.
#pragma once

#include "console/machine.h"

namespace kesp::console {

// On a thread that has initialised COM.
class MachineWin : public Machine {
 public:
  std::vector<PortDevice> Ports() override;
  PortUse Probe(const std::string& name) override;
  SystemFacts System() override;
  std::vector<NetworkAdapter> NetworkAdapters() override;
  std::optional<Office> InstalledOffice() override;
  bool HasVbScript(int bits) override;
  Registrations RegistrationsFor(int bits) override;
  std::string DeliveredLibrary(int bits) override;
  std::optional<FileFacts> FactsOf(const std::string& path) override;
  bool CanAppendTo(const std::string& path) override;
  std::vector<GpibFile> GpibFiles(int bits) override;
  LibraryReport Examine(const std::string& path) override;
  LibraryReport ExamineRegistered(const std::string& library) override;
  OtherProgram AskOther() override;

 private:
  std::optional<SystemFacts> system_;
};

}  // namespace kesp::console
