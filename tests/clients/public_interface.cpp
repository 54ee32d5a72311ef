// Prints all that clients are compiled against, from the type library in the DLL that it is given.
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "tests/clients/automation.h"
#include "tests/clients/type_reader.h"

namespace kesp::clients {
namespace {

void Print(const std::wstring& line) {
  std::printf("%ls\n", line.c_str());
}

void PrintLibrary(ITypeLib* library) {
  TLIBATTR* attributes = nullptr;
  Text name;
  if (FAILED(library->GetLibAttr(&attributes)))
    throw std::runtime_error("the type library has no attributes");
  if (attributes->syskind != (sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32)) {
    throw std::runtime_error("the type library is that of the other width");
  }
  library->GetDocumentation(-1, name.out(), nullptr, nullptr, nullptr);
  Print(L"library " + name.str() + L" " + TextOf(attributes->guid) + L" version " +
        std::to_wstring(attributes->wMajorVerNum) + L"." + std::to_wstring(attributes->wMinorVerNum));
  library->ReleaseTLibAttr(attributes);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    library->GetTypeInfo(i, &info);
    Print(L"");
    for (const std::wstring& line : TypeReader(info).Lines()) Print(line);
  }
}

}  // namespace
}  // namespace kesp::clients

int main(int count, char** arguments) {
  using namespace kesp::clients;
  try {
    if (count != 2) throw std::runtime_error("usage: public_interface KespCommObj.dll");
    const std::string path = arguments[1];
    ComPtr<ITypeLib> library;
    if (FAILED(LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE, &library))) {
      throw std::runtime_error("the file has no type library that can be read");
    }
    PrintLibrary(library.Get());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
