// What the library looks for when it looks for the GPIB's driver.
#include "console/gpib_file.h"

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

std::vector<std::string> GpibFileNames(int bits) {
  if (bits == 64) return {"Gpib-32.dll", "ni4882.dll"};
  return {"Gpib-32.dll"};
}

}  // namespace kesp::console
