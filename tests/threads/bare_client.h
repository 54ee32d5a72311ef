// A client's objects in a program without a test framework, which goes on whatever its calls come to.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::threads {

// Without the object the process ends with 3.
template <class Interface>
clients::ComPtr<Interface> Make(REFCLSID clsid) {
  clients::ComPtr<Interface> object;
  const HRESULT result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                          reinterpret_cast<void**>(object.GetAddressOf()));
  if (FAILED(result)) ExitProcess(3);
  return object;
}

// A communication object over one transport that writes its trace into this file.
struct Talker {
  Talker(ECommStyle style, const std::wstring& trace) {
    comm->put_DebugFilename(clients::Text(trace).get());
    comm->put_Debugging(VARIANT_TRUE);
    comm->put_CommStyle(&style);
    comm->get_CommObject(&transport);
  }
  void Ask(const std::wstring& cmd) {
    clients::Text reply;
    const clients::Text none(L"");
    VARIANT_BOOL answer = VARIANT_FALSE;
    comm->Query(reply.in_out(), clients::Text(cmd).get(), none.get(), none.get(), &answer);
  }

  clients::ComPtr<_CKespCommObj> comm = Make<_CKespCommObj>(__uuidof(CKespCommObj));
  clients::ComPtr<IDispatch> transport;
};

// The end of an object for a COM port writes the settings file, in which the port's address is -1 from then
// on.
inline void WriteSettings(short port) {
  const auto object = Make<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  object->put_Port(port);
}

}  // namespace kesp::threads
