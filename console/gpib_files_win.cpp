// The folder of the program, that of the system, and that of the library.
#include "console/gpib_files_win.h"

#include "console/program_folders_win.h"
#include "console/registrations_win.h"
#include "console/served_library.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

void AddFrom(const std::string& path, std::vector<GpibFile>& files) {
  if (const auto bytes = BytesOf(path)) files.push_back(GpibFileOf(path, *bytes));
}

// That of the library that clients get; empty: none.
std::string ServedFolder(int bits) {
  const ServedLibrary served = LibraryFor(Client::kOrdinary, ReadRegistrations(bits));
  if (served.IsNone()) return "";
  const std::string& library = served.libraries.front();
  return library.substr(0, library.rfind('\\') + 1);
}

}  // namespace

std::vector<GpibFile> FindGpibFiles(int bits) {
  std::vector<GpibFile> files;
  if (bits != kProgramBits && !RunsBothWidths()) return files;
  // kesp stands beside the library, so the program's folder is also the library's.
  const std::string program = bits == kProgramBits ? OwnFolder() : OtherFolder();
  const std::string system = SystemFolder(bits);
  for (const std::string& name : GpibFileNames(bits)) {
    if (!program.empty()) AddFrom(program + name, files);
    AddFrom(system + name, files);
  }
  const std::string served = ServedFolder(bits);
  if (served.empty() || IsSamePath(served, program) || IsSamePath(served, system)) return files;
  for (const std::string& name : GpibFileNames(bits)) AddFrom(served + name, files);
  return files;
}

}  // namespace kesp::console
