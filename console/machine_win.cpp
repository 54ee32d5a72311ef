// Each question goes to the file that knows.
#include "console/machine_win.h"

#include "console/device_list_win.h"
#include "console/gpib_files_win.h"
#include "console/library_health_win.h"
#include "console/network_adapters_win.h"
#include "console/other_program_win.h"
#include "console/program_folders_win.h"
#include "console/registrations_win.h"
#include "console/system_facts_win.h"

namespace kesp::console {

std::vector<PortDevice> MachineWin::Ports() {
  return ListPorts();
}
PortUse MachineWin::Probe(const std::string& name) {
  return ProbePort(name);
}
SystemFacts MachineWin::System() {
  if (!system_) system_ = ReadSystemFacts();
  return *system_;
}
std::vector<NetworkAdapter> MachineWin::NetworkAdapters() {
  return ListNetworkAdapters();
}
std::optional<Office> MachineWin::InstalledOffice() {
  return FindOffice();
}
bool MachineWin::HasVbScript(int bits) {
  return FindVbScript(bits);
}
Registrations MachineWin::RegistrationsFor(int bits) {
  return ReadRegistrations(bits);
}
std::string MachineWin::DeliveredLibrary(int bits) {
  const std::string folder = bits == kProgramBits ? OwnFolder() : OtherFolder();
  const std::string file = folder + "KespCommObj.dll";
  return !folder.empty() && IsFile(file) ? file : "";
}
std::optional<FileFacts> MachineWin::FactsOf(const std::string& path) {
  const auto bytes = BytesOf(path);
  return bytes ? std::optional(FileFactsOf(*bytes)) : std::nullopt;
}
bool MachineWin::CanAppendTo(const std::string& path) {
  return console::CanAppendTo(path);
}
std::vector<GpibFile> MachineWin::GpibFiles(int bits) {
  return FindGpibFiles(bits);
}
LibraryReport MachineWin::Examine(const std::string& path) {
  return ExamineLibrary(path);
}
LibraryReport MachineWin::ExamineRegistered(const std::string& library) {
  return ExamineRegisteredLibrary(library);
}
OtherProgram MachineWin::AskOther() {
  return AskOtherProgram();
}

}  // namespace kesp::console
