// A client's calls, each judged: a communication object in the hands of a scenario.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "tests/clients/automation.h"
#include "tests/faults/verdict.h"

namespace kesp::faults {

using clients::ComPtr;
using clients::Text;
using clients::Value;

// No answer of an operation.
inline constexpr VARIANT_BOOL kUnset = 5;

// By the class factory of the registered library; null where that fails.
template <class Interface>
ComPtr<Interface> Make(REFCLSID clsid, Verdict& verdict) {
  ComPtr<Interface> object;
  const HRESULT result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                          reinterpret_cast<void**>(object.GetAddressOf()));
  verdict.SucceededBarely(result, "CoCreateInstance");
  verdict.Expect(SUCCEEDED(result) == (object != nullptr), "CoCreateInstance left its result unset");
  return object;
}

// Query of a communication object: when it says that it succeeded, the reply must be that one; when it does
// not, the status must tell why.
bool QueryGives(_CKespCommObj* comm, const std::wstring& command, const std::wstring& expected,
                Verdict& verdict);
bool QueryBinaryGives(_CKespCommObj* comm, const std::wstring& command, const std::string& expected,
                      Verdict& verdict);
bool UpdateWorks(_CKespCommObj* comm, const std::wstring& command, Verdict& verdict);

// The transport of a communication object, which is made to use that style.
template <class Transport>
ComPtr<Transport> Use(_CKespCommObj* comm, ECommStyle style, Verdict& verdict) {
  ComPtr<Transport> transport;
  ComPtr<IDispatch> object;
  if (!verdict.Succeeded(comm->put_CommStyle(&style), "CommStyle")) return transport;
  if (!verdict.Succeeded(comm->get_CommObject(object.GetAddressOf()), "CommObject")) return transport;
  verdict.SucceededBarely(object.As(&transport), "QueryInterface");
  return transport;
}

// The bytes of an array of them; anything else gives a text that is no reply.
std::string BytesIn(const VARIANT& value);

// A command that no other one in this process is like; the instruments of the scenarios send it back.
std::wstring NewEcho();

// A file in the folder for such.
std::wstring TemporaryPath(const wchar_t* name);

// Of characters below 128.
std::string Narrow(const std::wstring& text);

// Of the environment of this program.
std::wstring Setting(const char* name);

}  // namespace kesp::faults
