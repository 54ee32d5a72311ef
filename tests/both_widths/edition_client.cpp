// A client that tells what it gets of the library of its own width: edition_client. It takes no arguments.
//
// One line for each fact, "name: value". Ends with 0 even where there is no library for it.
#include <array>
#include <cstdio>
#include <string>

#include "KespCommObj.h"
#include "tests/clients/late_object.h"
#include "tests/clients/other_apartment.h"

namespace kesp::clients {
namespace {

void Tell(const char* name, const std::wstring& value) {
  std::printf("%s: %ls\n", name, value.c_str());
}

std::wstring ServerFile() {
  std::array<wchar_t, 1024> path{};
  GetModuleFileNameW(GetModuleHandleW(L"KespCommObj.dll"), path.data(), static_cast<DWORD>(path.size()));
  return path.data();
}

// Through the marshaler, which reads the registered type library.
std::wstring PortThatWasSetElsewhere(const ComPtr<_CKespTCP>& tcp) {
  std::wstring port;
  Passage<_CKespTCP> passage(tcp.Get());
  RunElsewhere(COINIT_MULTITHREADED, [&] {
    const ComPtr<_CKespTCP> arrived = passage.Arrive();
    const LateObject late(ComPtr<IDispatch>(arrived.Get()));
    const Outcome put = late.Put(L"Port", *Value(4711).get());
    Outcome got = late.Get(L"Port");
    const bool is_proxy = arrived.Get() != tcp.Get();
    VariantChangeType(got.value.get(), got.value.get(), 0, VT_BSTR);
    port = SUCCEEDED(put.result) && is_proxy ? got.value.text() : L"not set";
  });
  return port;
}

void TellOfTheLibrary() {
  const Apartment apartment;
  Text type_library;
  QueryPathOfRegTypeLib(LIBID_KespCommObj, 1, 0, LOCALE_NEUTRAL, type_library.out());
  Tell("type library", type_library.str());
  ComPtr<_CKespTCP> tcp;
  const HRESULT result = CoCreateInstance(__uuidof(CKespTCP), nullptr, CLSCTX_INPROC_SERVER,
                                          __uuidof(_CKespTCP), reinterpret_cast<void**>(tcp.GetAddressOf()));
  std::printf("created: %08lX\n", static_cast<unsigned long>(result));
  if (FAILED(result)) return;
  Tell("server", ServerFile());
  Tell("port set elsewhere", PortThatWasSetElsewhere(tcp));
}

}  // namespace
}  // namespace kesp::clients

int main() {
  kesp::clients::TellOfTheLibrary();
}
