// Calls of the library that every benchmark makes, through the vtable and late bound.
#pragma once

#include <KespCommObj.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstddef>

namespace kesp::bench {

// Throws std::runtime_error for a failed call.
void CheckResult(HRESULT result, const char* what);

// A communication object, not set to anything yet.
Microsoft::WRL::ComPtr<::_CKespCommObj> CreateCommObj();

// The transport of that style, which is in use from then on.
Microsoft::WRL::ComPtr<IDispatch> SelectTransport(::_CKespCommObj* comm, ::ECommStyle style);

DISPID IdOf(IDispatch* object, const wchar_t* name);

// The length of a text, which is freed.
std::size_t LengthOf(BSTR text);

// Query through the vtable; returns the length of the reply. Throws when there is none.
std::size_t Query(::_CKespCommObj* comm, BSTR cmd);

// A method that takes a variable for its reply and then `cmd` (none when null), as a script calls it; returns
// what the method returned. The caller clears the variable.
bool AskLate(IDispatch* object, DISPID method, BSTR cmd, VARIANT* variable);

// The same; returns the length of the reply. Throws when the method returns False.
std::size_t ReadLate(IDispatch* object, DISPID method, BSTR cmd);

// A method that takes `cmd` and returns a Boolean, as a script calls it.
void WriteLate(IDispatch* object, DISPID method, BSTR cmd);

}  // namespace kesp::bench
