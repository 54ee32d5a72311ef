// A file that may be the GPIB's driver.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kesp::console {

struct GpibFile {
  std::string path;
  int bits = 0;  // 64 or 32; 0: no program file of either
  std::string version;
  std::vector<std::string> missing;  // the entry points that the library needs and the file lacks
};

// What the library looks for in the driver.
const std::vector<std::string>& NeededGpibEntryPoints();

// bytes: the whole file.
GpibFile GpibFileOf(const std::string& path, std::string_view bytes);

// The driver's file names for programs of that width, the first one first.
std::vector<std::string> GpibFileNames(int bits);

}  // namespace kesp::console
