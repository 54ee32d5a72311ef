// A late-bound client that uses a manifest only while it creates its object, as Microsoft.Windows.ActCtx does
// for scripts: context_client MANIFEST HOST PORT. It has no manifest of its own.
//
// Prints "created: " with the result, then "reply: " with what the instrument says to *IDN?. Ends with 1
// without a reply.
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "tests/clients/late_object.h"

namespace kesp::clients {
namespace {

// The object, created with the manifest; none where that is not possible.
ComPtr<IDispatch> CreateWith(const wchar_t* manifest) {
  ACTCTXW asked{};
  asked.cbSize = sizeof(asked);
  asked.lpSource = manifest;
  HANDLE context = CreateActCtxW(&asked);
  ULONG_PTR cookie = 0;
  ComPtr<IDispatch> object;
  CLSID clsid{};
  if (context == INVALID_HANDLE_VALUE || !ActivateActCtx(context, &cookie)) return object;
  HRESULT result = CLSIDFromProgID(L"KespCommObj.CKespCommObj", &clsid);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(object.GetAddressOf()));
  }
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(context);
  std::printf("created: %08lX\n", static_cast<unsigned long>(result));
  return object;
}

bool Ask(const LateObject& comm, const wchar_t* host, long port) {
  const Value style(1);  // csTCPIP
  const Value address(host);
  const Value number(port);
  const Value command(L"*IDN?");
  Value reply(L"");
  if (comm.Put(L"CommStyle", Plain(style)).result != S_OK) return false;
  Outcome got = comm.Get(L"CommObject");
  if (got.value.type() != VT_DISPATCH) return false;
  const LateObject tcp{ComPtr<IDispatch>(V_DISPATCH(got.value.get()))};
  if (tcp.Put(L"IPAddress", Plain(address)).result != S_OK ||
      tcp.Put(L"Port", Plain(number)).result != S_OK) {
    return false;
  }
  const bool is_answered = comm.Call(L"Query", {Variable(reply), Plain(command)}).IsTrue();
  std::printf("reply: %ls\n", reply.text().c_str());
  return is_answered;
}

bool Run(const wchar_t* manifest, const wchar_t* host, long port) {
  const Apartment apartment;
  const ComPtr<IDispatch> object = CreateWith(manifest);
  return object && Ask(LateObject(object), host, port);
}

}  // namespace
}  // namespace kesp::clients

int wmain(int count, wchar_t** words) {
  if (count != 4) return 2;
  return kesp::clients::Run(words[1], words[2], std::wcstol(words[3], nullptr, 10)) ? 0 : 1;
}
