// Reading and writing the member `value` of a client's object.
#include "server/result_object.h"

namespace kesp {

ResultObject::ResultObject(const VARIANT& argument) {
  if (V_VT(&argument) != VT_DISPATCH || V_DISPATCH(&argument) == nullptr) return;
  wchar_t text[] = L"value";
  wchar_t* name = text;
  if (FAILED(V_DISPATCH(&argument)->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &member_))) return;
  object_ = V_DISPATCH(&argument);
}

void ResultObject::Read(VARIANT* value) const {
  DISPPARAMS none{};
  const HRESULT outcome = object_->Invoke(member_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                          value, nullptr, nullptr);
  if (FAILED(outcome)) VariantClear(value);
}

HRESULT ResultObject::Write(VARIANT* value) const {
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS arguments{.rgvarg = value, .rgdispidNamedArgs = &put, .cArgs = 1, .cNamedArgs = 1};
  return object_->Invoke(member_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &arguments, nullptr,
                         nullptr, nullptr);
}

}  // namespace kesp
