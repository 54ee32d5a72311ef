// The description of the bus in the file beside the DLL.
#include "simulator/gpib/bus_file_win.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "simulator/description.h"

namespace kesp::simulator::gpib {
namespace {

void Report(const std::filesystem::path& file, const std::string& reason) {
  std::fprintf(stderr, "Gpib-32.json cannot be used:\n%s\n", reason.c_str());
  std::fflush(stderr);
  std::ofstream(file) << "Gpib-32.json cannot be used:\n" << reason << "\n";
}

}  // namespace

BusDescription BusBeside(const std::wstring& path) {
  const std::filesystem::path file(path + L".json");
  const std::filesystem::path error_file(path + L".error.txt");
  std::error_code ignored;
  try {
    BusDescription bus =
        std::filesystem::exists(file) ? ReadBus(ContentsOf(file), "Gpib-32.json") : BuiltInBus();
    std::filesystem::remove(error_file, ignored);
    return bus;
  } catch (const std::exception& error) {
    Report(error_file, error.what());
    return UnusableBus();
  }
}

}  // namespace kesp::simulator::gpib
