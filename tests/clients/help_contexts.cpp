// Prints the help context of everything in the type library of the DLL that it is given: number, help file,
// kind, type and member.
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "tests/clients/automation.h"

namespace kesp::clients {
namespace {

// Identifiers from here on are IUnknown's and IDispatch's own.
constexpr MEMBERID kInherited = 0x60000000;

void Check(HRESULT result) {
  if (FAILED(result)) throw std::runtime_error("the type library cannot be read");
}

std::wstring KindOf(TYPEKIND kind, WORD flags) {
  switch (kind) {
    case TKIND_COCLASS:
      return L"coclass";
    case TKIND_ENUM:
      return L"enum";
    case TKIND_DISPATCH:
      return (flags & TYPEFLAG_FDUAL) != 0 ? L"interface" : L"dispinterface";
    default:
      return L"other";
  }
}

struct Documentation {
  std::wstring name;
  std::wstring file;
  unsigned long context = 0;
};

// Of a type library or of type information: both describe their parts by the same call.
template <class Described>
Documentation DocumentationOf(Described* described, int part) {
  Text name;
  Text file;
  Documentation found;
  Check(described->GetDocumentation(part, name.out(), nullptr, &found.context, file.out()));
  found.name = name.str();
  found.file = file.str();
  return found;
}

void Print(const Documentation& found, const std::wstring& what) {
  std::printf("%lu %ls %ls\n", found.context, found.file.c_str(), what.c_str());
}

void PrintType(ITypeInfo* info) {
  TYPEATTR* attributes = nullptr;
  Check(info->GetTypeAttr(&attributes));
  const TYPEATTR type = *attributes;
  info->ReleaseTypeAttr(attributes);
  // The second name of an enumeration.
  if (type.typekind == TKIND_ALIAS) return;
  const Documentation own = DocumentationOf(info, MEMBERID_NIL);
  const std::wstring heading = KindOf(type.typekind, type.wTypeFlags) + L" " + own.name;
  Print(own, heading);
  for (UINT i = 0; i < type.cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    Check(info->GetFuncDesc(i, &function));
    const MEMBERID member = function->memid;
    info->ReleaseFuncDesc(function);
    if (member >= kInherited) continue;
    const Documentation found = DocumentationOf(info, member);
    Print(found, heading + L" " + found.name);
  }
}

void PrintLibrary(ITypeLib* library) {
  const Documentation own = DocumentationOf(library, -1);
  Print(own, L"library " + own.name);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    Check(library->GetTypeInfo(i, &info));
    PrintType(info.Get());
  }
}

}  // namespace
}  // namespace kesp::clients

int main(int count, char** arguments) {
  using namespace kesp::clients;
  try {
    if (count != 2) throw std::runtime_error("usage: help_contexts KespCommObj.dll");
    const std::string path = arguments[1];
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE, &library));
    PrintLibrary(library.Get());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
