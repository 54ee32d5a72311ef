// Loading and redirecting.
#include "tests/faults/library.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <map>
#include <stdexcept>

#include "tests/clients/library_module.h"
#include "tests/faults/functions.h"
#include "tests/faults/import_table.h"

namespace kesp::faults {

namespace {

HMODULE library = nullptr;

template <class Functions>
auto Find(const Functions& functions, const std::string& name) {
  return std::find_if(functions.begin(), functions.end(), [&](const auto& function) {
    if constexpr (requires { function.reason; }) {
      return name == function.name;
    } else {
      return name == function.name();
    }
  });
}

void RedirectAll(HMODULE module) {
  const auto& functions = TheInjector().functions();
  for (const ImportSlot& import : ImportsOf(module)) {
    const auto function = Find(functions, import.name);
    if (function != functions.end()) function->state().original = Redirect(import, function->hook());
  }
}

// What the loader tells of a module (LDR_DLL_NOTIFICATION_DATA).
struct LoadedModule {
  ULONG flags;
  const UNICODE_STRING* path;
  const UNICODE_STRING* name;
  void* base;
  ULONG size;
};

using Notification = void(CALLBACK*)(ULONG reason, const LoadedModule* module, void* context);
using RegisterNotification = LONG(NTAPI*)(ULONG flags, Notification notification, void* context,
                                          void** cookie);

void CALLBACK OnLoaded(ULONG reason, const LoadedModule* module, void*) {
  constexpr ULONG kLoaded = 1;
  if (reason != kLoaded || _wcsnicmp(module->name->Buffer, L"KespCommObj.dll", 15) != 0) return;
  RedirectAll(static_cast<HMODULE>(module->base));
}

}  // namespace

void RedirectWhenLoaded() {
  const auto module = GetModuleHandleW(L"ntdll.dll");
  const auto found = reinterpret_cast<void*>(GetProcAddress(module, "LdrRegisterDllNotification"));
  const auto register_notification = reinterpret_cast<RegisterNotification>(found);
  void* cookie = nullptr;
  if (register_notification == nullptr || register_notification(0, &OnLoaded, nullptr, &cookie) != 0) {
    throw std::runtime_error("the loader does not tell what it loads");
  }
  TheInjector().Begin(FailingFunctions());
}

void LoadLibraryWithHooks() {
  const std::wstring path = clients::RegisteredPath();
  library = path.empty() ? nullptr : LoadLibraryW(path.c_str());
  if (library == nullptr) throw std::runtime_error("the library is not registered: tools/wine-register");
  const std::vector<ImportSlot> imports = ImportsOf(library);
  std::vector<Import> functions = FailingFunctions();
  // A table has the names of both widths.
  std::erase_if(functions, [&](const Import& function) {
    return std::none_of(imports.begin(), imports.end(),
                        [&](const ImportSlot& import) { return import.name == function.name(); });
  });
  TheInjector().Begin(functions);
  RedirectAll(library);
}

ImportSummary SummaryOfImports() {
  ImportSummary summary;
  const auto& failing = TheInjector().functions();
  const auto steady = SteadyFunctions();
  for (const ImportSlot& import : ImportsOf(library)) {
    ++summary.imported;
    const auto function = Find(failing, import.name);
    const bool is_hooked = function != failing.end();
    const bool can_fail = is_hooked && !function->ways().empty();
    const bool is_steady = Find(steady, import.name) != steady.end();
    if (can_fail) ++summary.can_fail;
    if (is_steady == is_hooked) summary.unlisted.push_back(import.name);
  }
  return summary;
}

}  // namespace kesp::faults
