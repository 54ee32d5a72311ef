// Loading the driver's DLL and looking up its entry points.
#include "gpib/gpib_binding.h"

#include <cstdint>
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

// Returns the name of the file that was loaded.
std::wstring LoadFirst(GpibLibrary& library, const std::wstring& source) {
  const std::vector<std::wstring> names = library.FileNames();
  for (const std::wstring& name : names) {
    const std::uint32_t error = library.Load(name);
    if (error == 0) return name;
    if (error == kGpibLibraryNotFound) continue;
    // It is installed, so the other names would only hide what is wrong with it.
    throw Failure(
        kErrorInLoading, source,
        L"Error in loading the GPIB driver " + name + L" (system error " + std::to_wstring(error) + L")");
  }
  throw Failure(kFileNotFound, source,
                L"File not found: " + Joined(names) + L" (the GPIB driver is not installed)");
}

class EntryPointSearch {
 public:
  EntryPointSearch(GpibLibrary& library, std::wstring file_name, std::wstring source)
      : library_(library), file_name_(std::move(file_name)), source_(std::move(source)) {}

  // Fills a place of the table with the function of that name.
  template <typename Function>
  void Find(Function& place, const char* name) {
    const GpibEntryPoint found = library_.Find(name);
    if (found == nullptr) {
      throw Failure(kEntryPointNotFound, source_,
                    L"Can't find the entry point " +
                        std::wstring(name, name + std::char_traits<char>::length(name)) +
                        L" in the GPIB driver " + file_name_);
    }
    place = reinterpret_cast<Function>(found);
  }

 private:
  GpibLibrary& library_;
  std::wstring file_name_;
  std::wstring source_;
};

}  // namespace

GpibEntryPoints BindGpibDriver(GpibLibrary& library, const std::wstring& source) {
  EntryPointSearch search(library, LoadFirst(library, source), source);
  GpibEntryPoints table{};
  search.Find(table.ibdev, "ibdev");
  search.Find(table.ibclr, "ibclr");
  search.Find(table.ibeos, "ibeos");
  search.Find(table.ibwrt, "ibwrt");
  search.Find(table.ibrd, "ibrd");
  search.Find(table.ibonl, "ibonl");
  search.Find(table.RegisterGpibGlobalsForThread, "RegisterGpibGlobalsForThread");
  search.Find(table.UnregisterGpibGlobalsForThread, "UnregisterGpibGlobalsForThread");
  return table;
}

}  // namespace kesp
