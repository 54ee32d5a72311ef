// Loading the library, and creating its objects.
#include "console/object_source_win.h"

#include <array>
#include <filesystem>

#include "console/wide_text_win.h"

namespace kesp::console {
namespace {

constexpr wchar_t kLibrary[] = L"KespCommObj.dll";
constexpr const char* kBits = sizeof(void*) == 8 ? "64" : "32";

std::filesystem::path OwnFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return std::filesystem::path(path).parent_path();
}

std::string ReasonOf(DWORD error, const std::filesystem::path& file) {
  const std::string name = ToUtf8(file.native());
  std::error_code ignored;
  if (!exists(file, ignored))
    return name + " is not there: put it beside kesp.exe, or use the registered library with --registered";
  if (error == ERROR_BAD_EXE_FORMAT)
    return name + " is not for " + kBits + "-bit programs, as this kesp.exe is one: put the " + kBits +
           "-bit edition beside it";
  return name + " cannot be loaded (error " + std::to_string(error) + " of Windows)";
}

[[noreturn]] void FailToLoad(const std::filesystem::path& file) {
  throw NoLibrary(ReasonOf(GetLastError(), file));
}

std::string ReasonOf(HRESULT result) {
  if (result == REGDB_E_CLASSNOTREG)
    return std::string("the library is not registered for ") + kBits +
           "-bit programs: register it with regsvr32, or leave out --registered";
  try {
    Check(result);
  } catch (const LibraryError& error) {
    return std::string("the library's object cannot be created: ") + error.what() + " (" + error.status() +
           ")";
  }
  return {};
}

}  // namespace

ObjectSource ObjectSource::Beside() {
  const std::filesystem::path file = OwnFolder() / kLibrary;
  // What it needs is looked for in its own folder first. It stays loaded until the program ends.
  HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == nullptr) FailToLoad(file);
  const FARPROC found = GetProcAddress(module, "DllGetClassObject");
  if (found == nullptr) FailToLoad(file);
  // Through a pointer to nothing in particular: the compiler distrusts a cast between function types.
  return ObjectSource(reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(found)));
}

void ObjectSource::Create(REFCLSID clsid, REFIID iid, void** object) const {
  HRESULT result = S_OK;
  if (get_class_object_ == nullptr) {
    result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, object);
  } else {
    ComPtr<IClassFactory> factory;
    result = get_class_object_(clsid, IID_PPV_ARGS(&factory));
    if (SUCCEEDED(result)) result = factory->CreateInstance(nullptr, iid, object);
  }
  if (FAILED(result)) throw NoLibrary(ReasonOf(result));
}

}  // namespace kesp::console
