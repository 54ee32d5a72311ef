// Functions by the system's library for debuggers, or by the table of exports.
#include "tests/threads/function_names.h"

// Behind windows.h.
#include <dbghelp.h>

#include <array>
#include <cstddef>
#include <sstream>

namespace kesp::threads {
namespace {

struct Place {
  std::string function;
  DWORD64 offset;
};

template <class T>
const T* At(HMODULE module, DWORD offset) {
  return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module) + offset);
}

// The last function of a module's exports before that offset in the module.
Place LastExportBefore(const char* module_name, DWORD64 offset) {
  Place place{"", offset};
  HMODULE module = GetModuleHandleA(module_name);
  if (module == nullptr) return place;
  const auto* const headers =
      At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
  const DWORD exports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
  if (exports == 0) return place;
  const auto* const directory = At<IMAGE_EXPORT_DIRECTORY>(module, exports);
  const DWORD* const functions = At<DWORD>(module, directory->AddressOfFunctions);
  const DWORD* const names = At<DWORD>(module, directory->AddressOfNames);
  const WORD* const ordinals = At<WORD>(module, directory->AddressOfNameOrdinals);
  for (DWORD i = 0; i < directory->NumberOfNames; ++i) {
    const DWORD begin = functions[ordinals[i]];
    if (begin > offset || offset - begin >= place.offset) continue;
    place = {At<char>(module, names[i]), offset - begin};
  }
  return place;
}

}  // namespace

FunctionNames::FunctionNames(HANDLE process) : process_(process) {
  SymSetOptions(SYMOPT_UNDNAME | SYMOPT_DEFERRED_LOADS);
  SymInitializeW(process, nullptr, TRUE);
}

FunctionNames::~FunctionNames() {
  SymCleanup(process_);
}

std::string FunctionNames::Of(DWORD64 address) const {
  std::ostringstream text;
  IMAGEHLP_MODULE64 module{};
  module.SizeOfStruct = sizeof module;
  if (SymGetModuleInfo64(process_, address, &module) == FALSE) {
    text << "0x" << std::hex << address;
    return text.str();
  }
  alignas(SYMBOL_INFO) std::array<std::byte, sizeof(SYMBOL_INFO) + MAX_SYM_NAME> room{};
  auto* const symbol = reinterpret_cast<SYMBOL_INFO*>(room.data());
  symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
  symbol->MaxNameLen = MAX_SYM_NAME;
  Place place{};
  if (SymFromAddr(process_, address, &place.offset, symbol) != FALSE) {
    place.function = symbol->Name;
  } else {
    place = LastExportBefore(module.ModuleName, address - module.BaseOfImage);
  }
  text << module.ModuleName << '!' << place.function << "+0x" << std::hex << place.offset;
  return text.str();
}

}  // namespace kesp::threads
