// The counting functions, and their way into a module's import table.
#include "bench/allocation_counter.h"

#include <oleauto.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

namespace kesp::bench {

namespace {

std::atomic<std::int64_t> made{0};
std::atomic<std::int64_t> freed{0};
std::atomic<std::int64_t> texts{0};

// What the module imported; the program's own runtime need not be the same one.
decltype(&std::malloc) real_malloc;
decltype(&std::calloc) real_calloc;
decltype(&std::realloc) real_realloc;
decltype(&std::free) real_free;
decltype(&_strdup) real_strdup;
decltype(&SysAllocStringLen) real_text;

void* __cdecl CountedMalloc(std::size_t size) {
  ++made;
  return real_malloc(size);
}

void* __cdecl CountedCalloc(std::size_t count, std::size_t size) {
  ++made;
  return real_calloc(count, size);
}

void* __cdecl CountedRealloc(void* block, std::size_t size) {
  if (block == nullptr) ++made;
  return real_realloc(block, size);
}

char* __cdecl CountedStrdup(const char* text) {
  ++made;
  return real_strdup(text);
}

void __cdecl CountedFree(void* block) {
  if (block != nullptr) ++freed;
  real_free(block);
}

BSTR __stdcall CountedText(const OLECHAR* characters, UINT length) {
  ++texts;
  return real_text(characters, length);
}

// The place in the module's import table that holds the address of a function.
void** PlaceOf(HMODULE module, const char* function) {
  auto* base = reinterpret_cast<std::uint8_t*>(module);
  const auto* header =
      reinterpret_cast<const IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
  const IMAGE_DATA_DIRECTORY& imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
  for (; library->Name != 0; ++library) {
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
    auto* place = reinterpret_cast<void**>(base + library->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++place) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(import->Name), function) == 0) return place;
    }
  }
  throw std::runtime_error(std::string("the library does not import ") + function);
}

template <class Function>
void Replace(HMODULE module, const char* name, Function& real, Function counted) {
  void** place = PlaceOf(module, name);
  DWORD protection = 0;
  if (VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection) == FALSE)
    throw std::runtime_error("the library's imports cannot be changed");
  real = reinterpret_cast<Function>(*place);
  *place = reinterpret_cast<void*>(counted);
  VirtualProtect(place, sizeof *place, protection, &protection);
}

}  // namespace

void CountAllocationsOf(HMODULE module) {
  Replace(module, "malloc", real_malloc, &CountedMalloc);
  Replace(module, "calloc", real_calloc, &CountedCalloc);
  Replace(module, "realloc", real_realloc, &CountedRealloc);
  Replace(module, "_strdup", real_strdup, &CountedStrdup);
  Replace(module, "free", real_free, &CountedFree);
  Replace(module, "SysAllocStringLen", real_text, &CountedText);
}

Allocations AllocationsSoFar() {
  return {.made = made, .freed = freed, .texts = texts};
}

}  // namespace kesp::bench
