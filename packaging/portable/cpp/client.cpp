// Asks an instrument on the network who it is, with a library that lies beside the program and is not
// registered.
//
//   client.exe host [port [command]]
//
// With MinGW-w64:
//   windres client.rc client.o
//   g++ -municode -static -I ..\..\include client.cpp client.o -o client.exe -lole32 -loleaut32 -luuid
#include <KespCommObj.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

bool PointAt(_CKespCommObj* comm, const wchar_t* host, short port) {
  ECommStyle style = csTCPIP;
  IDispatch* transport = nullptr;
  _CKespTCP* tcp = nullptr;
  BSTR address = SysAllocString(host);
  const bool done =
      SUCCEEDED(comm->put_CommStyle(&style)) && SUCCEEDED(comm->get_CommObject(&transport)) &&
      SUCCEEDED(transport->QueryInterface(__uuidof(_CKespTCP), reinterpret_cast<void**>(&tcp))) &&
      SUCCEEDED(tcp->put_IPAddress(address)) && SUCCEEDED(tcp->put_Port(port));
  SysFreeString(address);
  if (tcp != nullptr) tcp->Release();
  if (transport != nullptr) transport->Release();
  return done;
}

int Ask(_CKespCommObj* comm, const wchar_t* text) {
  BSTR command = SysAllocString(text), none = SysAllocString(L""), reply = nullptr;
  VARIANT_BOOL is_answered = VARIANT_FALSE;
  const HRESULT result = comm->Query(&reply, command, none, none, &is_answered);
  if (SUCCEEDED(result) && is_answered) std::printf("reply: %ls\n", reply);
  for (BSTR owned : {command, none, reply}) SysFreeString(owned);
  return SUCCEEDED(result) && is_answered ? 0 : 1;
}

}  // namespace

int wmain(int count, wchar_t** words) {
  if (count < 2) return std::fputs("usage: client host [port [command]]\n", stderr), 2;
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  _CKespCommObj* comm = nullptr;
  const HRESULT result = CoCreateInstance(__uuidof(CKespCommObj), nullptr, CLSCTX_INPROC_SERVER,
                                          __uuidof(_CKespCommObj), reinterpret_cast<void**>(&comm));
  int code = 1;
  if (FAILED(result)) {
    std::printf("the library was not found (%08lX)\n", static_cast<unsigned long>(result));
  } else if (PointAt(comm, words[1], static_cast<short>(count > 2 ? _wtoi(words[2]) : 10001))) {
    code = Ask(comm, count > 3 ? words[3] : L"*IDN?");
  }
  if (comm != nullptr) comm->Release();
  CoUninitialize();
  return code;
}
