// The driver's DLL as the system finds it: the seam below the driver binding.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kesp {

// A function of the DLL before its type is known.
using GpibEntryPoint = void (*)();

// Finds and holds the driver's DLL. Used by one thread at a time.
class GpibLibrary {
 public:
  virtual ~GpibLibrary() = default;

  // The file names under which the driver may be installed, the most likely one first; never empty.
  virtual std::vector<std::wstring> FileNames() const = 0;

  // Loads a DLL of that name from where Windows looks for libraries of the application and of the system.
  // Returns 0, or the system's error number. A DLL loaded before is given up.
  virtual std::uint32_t Load(const std::wstring& file_name) = 0;

  // An entry point of the DLL loaded last; null when it has none of that name.
  virtual GpibEntryPoint Find(const char* name) = 0;
};

// What Load returns for a file that is nowhere (ERROR_MOD_NOT_FOUND of the system's error codes).
inline constexpr std::uint32_t kGpibLibraryNotFound = 126;

}  // namespace kesp
