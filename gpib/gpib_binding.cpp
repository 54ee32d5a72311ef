// Loading the driver's DLL and looking up its entry points.
#include "gpib/gpib_binding.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/failure.h"

namespace kesp {

namespace {

// Visual Basic's numbers for a DLL that is missing, one that does not load, and one without the function.
constexpr std::int32_t kFileNotFound = 53;
constexpr std::int32_t kErrorInLoading = 48;
constexpr std::int32_t kEntryPointNotFound = 453;

std::wstring Joined(const std::vector<std::wstring>& names) {
  std::wstring text;
  for (const std::wstring& name : names) text += (text.empty() ? L"" : L" or ") + name;
  return text;
}

std::wstring Reason(std::uint32_t error) {
  if (error == kGpibLibraryNeedsAnother) return L"a DLL that it needs is missing";
  return L"system error " + std::to_wstring(error);
}

// Returns the name of the file that was loaded.
std::wstring LoadFirst(GpibLibrary& library, const wchar_t* source) {
  const std::vector<std::wstring> names = library.FileNames();
  // What is installed for all programs goes before what lies beside this library, under whichever name.
  for (const GpibPlace place : {GpibPlace::kWindowsFolders, GpibPlace::kFolderOfThisLibrary}) {
    for (const std::wstring& name : names) {
      const std::uint32_t error = library.Load(name, place);
      if (error == 0) return name;
      if (error == kGpibLibraryNotFound) continue;
      // It is installed, so another file would only hide what is wrong with it.
      throw Failure(kErrorInLoading, source,
                    L"Error in loading the GPIB driver " + name + L" (" + Reason(error) + L")");
    }
  }
  throw Failure(kFileNotFound, source,
                L"File not found: " + Joined(names) + L" (the GPIB driver is not installed)");
}

// Fills a place of the table with the function of that name.
template <typename Function>
void Find(GpibLibrary& library, Function& place, const char* name) {
  const GpibEntryPoint found = library.Find(name);
  if (found == nullptr) throw std::string_view(name);
  place = reinterpret_cast<Function>(found);
}

// Throws the name of the first function that is missing.
GpibEntryPoints FindAll(GpibLibrary& library) {
  GpibEntryPoints table{};
  Find(library, table.ibdev, "ibdev");
  Find(library, table.ibclr, "ibclr");
  Find(library, table.ibeos, "ibeos");
  Find(library, table.ibwrt, "ibwrt");
  Find(library, table.ibrd, "ibrd");
  Find(library, table.ibonl, "ibonl");
  Find(library, table.RegisterGpibGlobalsForThread, "RegisterGpibGlobalsForThread");
  Find(library, table.UnregisterGpibGlobalsForThread, "UnregisterGpibGlobalsForThread");
  return table;
}

}  // namespace

GpibEntryPoints BindGpibDriver(GpibLibrary& library, const wchar_t* source) {
  const std::wstring file_name = LoadFirst(library, source);
  try {
    return FindAll(library);
  } catch (std::string_view missing) {
    library.Unload();
    throw Failure(kEntryPointNotFound, source,
                  L"Can't find the entry point " + std::wstring(missing.begin(), missing.end()) +
                      L" in the GPIB driver " + file_name);
  }
}

}  // namespace kesp
