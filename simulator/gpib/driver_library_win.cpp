// The simulated driver as a Windows program sees it: a DLL, loaded by name, and its functions.
#include "simulator/gpib/driver_library_win.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace kesp::simulator::gpib {

DriverLibrary::DriverLibrary(const std::filesystem::path& path) : module_(LoadLibraryW(path.c_str())) {
  if (module_ == nullptr)
    throw std::runtime_error("the DLL cannot be loaded, error " + std::to_string(GetLastError()));
  Find(ibdev, "ibdev");
  Find(ibclr, "ibclr");
  Find(ibeos, "ibeos");
  Find(ibwrt, "ibwrt");
  Find(ibrd, "ibrd");
  Find(ibonl, "ibonl");
  Find(ibrsp, "ibrsp");
  Find(Register, "RegisterGpibGlobalsForThread");
  Find(Unregister, "UnregisterGpibGlobalsForThread");
  Find(load, "KespSimulationLoad");
  Find(record, "KespSimulationRecord");
  Find(open_descriptors, "KespSimulationOpenDescriptors");
}

DriverLibrary::~DriverLibrary() {
  FreeLibrary(module_);
}

template <typename Function>
void DriverLibrary::Find(Function& function, const char* name) {
  const FARPROC found = GetProcAddress(module_, name);
  if (found == nullptr) throw std::runtime_error(std::string(name) + " is not exported");
  static_assert(sizeof function == sizeof found);
  std::memcpy(&function, &found, sizeof function);
}

std::filesystem::path DriverLibrary::Path() const {
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(module_, path.data(), static_cast<DWORD>(path.size()));
  return path.data();
}

std::string DriverLibrary::Ask(const std::string& command) {
  const int device = ibdev(0, 5, 0, 13, 1, 0);
  std::string reply(1000, ' ');
  ibwrt(device, command.data(), static_cast<long>(command.size()));
  const int status = ibrd(device, reply.data(), static_cast<long>(reply.size()));
  ibonl(device, 0);
  return (status & 0x8000) != 0 ? "error" : reply.substr(0, reply.find(' '));
}

std::string DriverLibrary::Load(const std::string& json) {
  std::string message(500, '\0');
  const int result = load(json.c_str(), message.data(), static_cast<long>(message.size()));
  message.resize(message.find('\0'));
  EXPECT_EQ(result, message.empty() ? 0 : 1);
  return message;
}

std::string DriverLibrary::Record() {
  std::string text;
  // It grows while other threads call the driver.
  for (long size = record(nullptr, 0); static_cast<std::size_t>(size) > text.size();
       size = record(text.data(), static_cast<long>(text.size()))) {
    text.resize(static_cast<std::size_t>(size));
  }
  text.resize(std::strlen(text.c_str()));
  return text;
}

}  // namespace kesp::simulator::gpib
