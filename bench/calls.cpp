// Creation, queries, and calls by dispatch identifier.
#include "bench/calls.h"

#include <stdexcept>
#include <string>

namespace kesp::bench {

using Microsoft::WRL::ComPtr;

namespace {

// Calls a method with arguments in reverse order; returns what it returned.
bool InvokeMethod(IDispatch* object, DISPID method, VARIANTARG* arguments, UINT count) {
  DISPPARAMS parameters{arguments, nullptr, count, 0};
  VARIANT succeeded;
  VariantInit(&succeeded);
  CheckResult(object->Invoke(method, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &succeeded,
                             nullptr, nullptr),
              "a method (late)");
  return V_BOOL(&succeeded) != VARIANT_FALSE;
}

void CheckTrue(bool succeeded) {
  if (!succeeded) throw std::runtime_error("a method (late) returned False");
}

}  // namespace

void CheckResult(HRESULT result, const char* what) {
  if (SUCCEEDED(result)) return;
  throw std::runtime_error(std::string(what) + " failed: " + std::to_string(result));
}

ComPtr<::_CKespCommObj> CreateCommObj() {
  ComPtr<::_CKespCommObj> comm;
  CheckResult(CoCreateInstance(__uuidof(::CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&comm)),
              "CoCreateInstance");
  return comm;
}

ComPtr<IDispatch> SelectTransport(::_CKespCommObj* comm, ::ECommStyle style) {
  CheckResult(comm->put_CommStyle(&style), "CommStyle");
  ComPtr<IDispatch> transport;
  CheckResult(comm->get_CommObject(&transport), "CommObject");
  return transport;
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  DISPID id = 0;
  auto* text = const_cast<wchar_t*>(name);
  CheckResult(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

std::size_t LengthOf(BSTR text) {
  const std::size_t length = SysStringLen(text);
  SysFreeString(text);
  return length;
}

std::size_t Query(::_CKespCommObj* comm, BSTR cmd) {
  BSTR result = nullptr;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(comm->Query(&result, cmd, nullptr, nullptr, &succeeded), "Query");
  if (succeeded == VARIANT_FALSE) throw std::runtime_error("Query had no reply");
  return LengthOf(result);
}

bool AskLate(IDispatch* object, DISPID method, BSTR cmd, VARIANT* variable) {
  VARIANTARG arguments[2];
  UINT count = 0;
  if (cmd != nullptr) {
    V_VT(&arguments[count]) = VT_BSTR;
    V_BSTR(&arguments[count++]) = cmd;
  }
  V_VT(&arguments[count]) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&arguments[count++]) = variable;
  return InvokeMethod(object, method, arguments, count);
}

std::size_t ReadLate(IDispatch* object, DISPID method, BSTR cmd) {
  VARIANT variable;
  VariantInit(&variable);
  CheckTrue(AskLate(object, method, cmd, &variable));
  const std::size_t length = SysStringLen(V_BSTR(&variable));
  VariantClear(&variable);
  return length;
}

void WriteLate(IDispatch* object, DISPID method, BSTR cmd) {
  VARIANTARG argument;
  V_VT(&argument) = VT_BSTR;
  V_BSTR(&argument) = cmd;
  CheckTrue(InvokeMethod(object, method, &argument, 1));
}

}  // namespace kesp::bench
