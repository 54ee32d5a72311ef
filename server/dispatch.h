// Late binding for every dual interface of the library.
#pragma once

#include "server/com_headers.h"

namespace kesp {

class InterfaceInfo;

// The four operations of IDispatch on `object`, whose dual interface `info` describes.
HRESULT DispatchGetTypeInfo(const InterfaceInfo& info, UINT index, ITypeInfo** type_info) noexcept;
HRESULT DispatchGetIDsOfNames(const InterfaceInfo& info, REFIID iid, LPOLESTR* names, UINT count,
                              DISPID* ids) noexcept;

// As the stock dispatch, with additions that scripts and other languages' run-times need.
//   * A result takes a script's variable (VT_BYREF|VT_VARIANT) whatever it held, and also a plain value. The
//     value is converted in where it can be (otherwise the member sees an empty one), and a variable gets the
//     new value when the member is done, also when it fails. A typed variable of another type is refused
//     before anything is sent. Where the plain value is an object, its member `value` is the variable; when
//     it refuses the result, the call fails, though it was carried out.
//   * A property's value by reference is converted, and refused when it cannot be. Nothing is written back.
//   * It makes no difference whether a method, a property that is read, or either is asked for.
//   * Arguments for a property that takes none go to the default member of the object that it holds, so that
//     tcp.Devices(1) is an instrument.
// The enumerator's name is known with and without an underscore before it.
HRESULT DispatchInvoke(const InterfaceInfo& info, IDispatch* object, DISPID id, REFIID iid, LCID locale,
                       WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                       UINT* bad_argument) noexcept;

}  // namespace kesp
