// The driver's DLL as the system finds it: the seam below the driver binding.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kesp {

// A function of the DLL before its type is known.
using GpibEntryPoint = void (*)();

// Error codes of the system that Load returns.
inline constexpr std::uint32_t kGpibLibraryNotFound = 126;  // ERROR_MOD_NOT_FOUND: the file is nowhere
inline constexpr std::uint32_t kGpibLibraryNeedsAnother =
    1157;  // ERROR_DLL_NOT_FOUND: a DLL that it needs is

// Where the driver's DLL may lie.
enum class GpibPlace {
  kWindowsFolders,       // where Windows looks for libraries of the application and of the system
  kFolderOfThisLibrary,  // beside the DLL that holds this code, whatever program has loaded it
};

// Finds and holds the driver's DLL. Used by one thread at a time.
class GpibLibrary {
 public:
  virtual ~GpibLibrary() = default;

  // The file names under which the driver may be installed, the most likely one first; never empty.
  virtual std::vector<std::wstring> FileNames() const = 0;

  // Loads a DLL of that name from there. Returns 0, or the system's error number.
  virtual std::uint32_t Load(const std::wstring& file_name, GpibPlace place) = 0;

  // An entry point of the loaded DLL; null when it has none of that name.
  virtual GpibEntryPoint Find(const char* name) = 0;

  // Gives up the loaded DLL, so that another file of its name can be loaded. Nothing of it is used any more.
  virtual void Unload() = 0;
};

}  // namespace kesp
