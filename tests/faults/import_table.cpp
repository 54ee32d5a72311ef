// Walking import descriptors, which are the same for both widths but for the size of an entry.
#include "tests/faults/import_table.h"

namespace kesp::faults {

std::vector<ImportSlot> ImportsOf(HMODULE module) {
  auto* const base = reinterpret_cast<BYTE*>(module);
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  std::vector<ImportSlot> imports;
  if (directory.VirtualAddress == 0) return imports;
  const auto* descriptor = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; descriptor->Name != 0; ++descriptor) {
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + descriptor->OriginalFirstThunk);
    auto* slot = reinterpret_cast<void**>(base + descriptor->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
        imports.push_back({"#" + std::to_string(IMAGE_ORDINAL(name->u1.Ordinal)), slot});
        continue;
      }
      const auto* entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
      imports.push_back({reinterpret_cast<const char*>(entry->Name), slot});
    }
  }
  return imports;
}

void* Redirect(const ImportSlot& import, void* function) {
  DWORD before = 0;
  void* const original = *import.slot;
  VirtualProtect(import.slot, sizeof(void*), PAGE_READWRITE, &before);
  *import.slot = function;
  VirtualProtect(import.slot, sizeof(void*), before, &before);
  return original;
}

}  // namespace kesp::faults
