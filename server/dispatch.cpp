// Checks and forwards the calls of late-bound clients.
#include "server/dispatch.h"

#include <wrl/client.h>

#include "server/error_bridge.h"
#include "server/reference_arguments.h"
#include "server/type_info_cache.h"
#include "server/variant_bridge.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

// The flags to look the member up with. Whether it is a method or a property that is read, many clients
// cannot tell, or do not say.
WORD EffectiveFlags(WORD flags) {
  constexpr WORD kReading = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  return static_cast<WORD>((flags & kReading) != 0 ? flags | kReading : flags);
}

// Clients that iterate by themselves often ask for the enumerator by the name that Visual Basic gives it.
bool IsEnumeratorsOtherName(const InterfaceInfo& info, const wchar_t* name) {
  return info.HasMember(DISPID_NEWENUM) &&
         CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, name, -1, L"_NewEnum", -1) == CSTR_EQUAL;
}

HRESULT Forward(const InterfaceInfo& info, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* arguments,
                VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) {
  UINT unused = 0;
  return info.type_info()->Invoke(object, id, flags, arguments, result, exception,
                                  bad_argument ? bad_argument : &unused);
}

// Arguments for a property that takes none are meant for the default member of the object that it holds.
HRESULT InvokeDefaultMember(const InterfaceInfo& info, IDispatch* object, const MemberCall& call, LCID locale,
                            WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                            UINT* bad_argument) {
  DISPPARAMS none{};
  ScopedVariant held;
  const HRESULT outcome =
      Forward(info, object, call.id, DISPATCH_PROPERTYGET, &none, held.get(), exception, bad_argument);
  if (FAILED(outcome)) return outcome;
  if (V_VT(held.get()) != VT_DISPATCH || V_DISPATCH(held.get()) == nullptr) return DISP_E_BADPARAMCOUNT;
  return V_DISPATCH(held.get())
      ->Invoke(DISPID_VALUE, IID_NULL, locale, flags, arguments, result, exception, bad_argument);
}

bool IsFalse(const VARIANT& answer) {
  return V_VT(&answer) == VT_BOOL && V_BOOL(&answer) == VARIANT_FALSE;
}

// The call when arguments by reference need preparing. That may run code of the client's, before and after,
// which may drop the last reference to the object.
HRESULT InvokePrepared(const InterfaceInfo& info, IDispatch* object, const MemberCall& call,
                       DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) {
  const ComPtr<IDispatch> kept(object);
  const WORD use = static_cast<WORD>(call.kind);
  // An operation says in its result whether it succeeded, also to a client that does not ask for it.
  ScopedVariant unasked;
  if (result == nullptr && call.kind == INVOKE_FUNC) result = unasked.get();
  ReferenceArguments prepared(call, *arguments);
  HRESULT outcome = prepared.fit();
  if (SUCCEEDED(outcome)) {
    outcome = Forward(info, object, call.id, use, prepared.arguments(), result, exception, bad_argument);
    const bool succeeded = SUCCEEDED(outcome) && (result == nullptr || !IsFalse(*result));
    const HRESULT written = prepared.WriteBack(succeeded);
    if (FAILED(outcome) || SUCCEEDED(written)) return outcome;
    if (result != nullptr) VariantClear(result);
    outcome = written;
  }
  if (bad_argument != nullptr) *bad_argument = prepared.bad_argument();
  return outcome;
}

}  // namespace

HRESULT DispatchGetTypeInfo(const InterfaceInfo& info, UINT index, ITypeInfo** type_info) noexcept {
  if (type_info == nullptr) return E_POINTER;
  *type_info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  *type_info = info.type_info();
  (*type_info)->AddRef();
  return S_OK;
}

HRESULT DispatchGetIDsOfNames(const InterfaceInfo& info, REFIID iid, LPOLESTR* names, UINT count,
                              DISPID* ids) noexcept {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr) return E_POINTER;
  const HRESULT result = info.type_info()->GetIDsOfNames(names, count, ids);
  if (result != DISP_E_UNKNOWNNAME || count == 0 || !IsEnumeratorsOtherName(info, names[0])) return result;
  ids[0] = DISPID_NEWENUM;
  return count == 1 ? S_OK : result;
}

HRESULT DispatchInvoke(const InterfaceInfo& info, IDispatch* object, DISPID id, REFIID iid, LCID locale,
                       WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                       UINT* bad_argument) noexcept {
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (arguments == nullptr) return E_POINTER;
  if (result != nullptr) VariantInit(result);
  const MemberCall* call = info.Find(id, EffectiveFlags(flags));
  if (call == nullptr) return DISP_E_MEMBERNOTFOUND;
  if (arguments->cNamedArgs > arguments->cArgs) return DISP_E_BADPARAMCOUNT;
  if (arguments->cArgs > call->arguments) {
    if (call->kind != INVOKE_PROPERTYGET || call->arguments != 0) return DISP_E_BADPARAMCOUNT;
    return InvokeDefaultMember(info, object, *call, locale, flags, arguments, result, exception,
                               bad_argument);
  }
  const WORD use = static_cast<WORD>(call->kind);
  // A property is never set and read at once, and its result, if asked for, stays empty.
  if ((call->kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0) result = nullptr;
  if (!ReferenceArguments::AreNeeded(*call, *arguments)) {
    return Forward(info, object, id, use, arguments, result, exception, bad_argument);
  }
  try {
    return InvokePrepared(info, object, *call, arguments, result, exception, bad_argument);
  } catch (...) {
    return ReportLateException(exception);
  }
}

}  // namespace kesp
