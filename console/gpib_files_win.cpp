// The folder of the program, that of the system, and that of the library.
#include "console/gpib_files_win.h"

#include "console/program_folders_win.h"

namespace kesp::console {

std::vector<GpibFile> FindGpibFiles(int bits) {
  std::vector<GpibFile> files;
  if (bits != kProgramBits && !RunsBothWidths()) return files;
  // kesp stands beside the library, so the program's folder is also the library's.
  const std::string program = bits == kProgramBits ? OwnFolder() : OtherFolder();
  for (const std::string& name : GpibFileNames(bits))
    for (const std::string& folder : {program, SystemFolder(bits)})
      if (const auto bytes = BytesOf(folder + name)) files.push_back(GpibFileOf(folder + name, *bytes));
  return files;
}

}  // namespace kesp::console
