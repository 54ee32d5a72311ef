// What the library looks for when it looks for the GPIB's driver.
#include "console/gpib_file.h"

#include "console/program_file.h"

namespace kesp::console {

const std::vector<std::string>& NeededGpibEntryPoints() {
  static const std::vector<std::string> names = {"ibdev",
                                                 "ibclr",
                                                 "ibeos",
                                                 "ibwrt",
                                                 "ibrd",
                                                 "ibonl",
                                                 "RegisterGpibGlobalsForThread",
                                                 "UnregisterGpibGlobalsForThread"};
  return names;
}

GpibFile GpibFileOf(const std::string& path, std::string_view bytes) {
  GpibFile file;
  file.path = path;
  const auto program = ReadProgramFile(bytes);
  if (!program) return file;
  file.bits = program->bits;
  file.version = program->version;
  for (const std::string& name : NeededGpibEntryPoints())
    if (!program->exports.contains(name)) file.missing.push_back(name);
  return file;
}

std::vector<std::string> GpibFileNames(int bits) {
  if (bits == 64) return {"Gpib-32.dll", "ni4882.dll"};
  return {"Gpib-32.dll"};
}

}  // namespace kesp::console
