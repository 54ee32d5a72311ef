// What an object of the client's own answers.
#include "tests/variants/counted_object.h"

namespace kesp::variants {

namespace {

constexpr DISPID kValueMember = 7;

}  // namespace

HRESULT CountedObject::QueryInterface(REFIID iid, void** object) {
  const bool is_known = iid == IID_IUnknown || iid == IID_IDispatch;
  *object = is_known ? this : nullptr;
  if (is_known) AddRef();
  return is_known ? S_OK : E_NOINTERFACE;
}

HRESULT CountedObject::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT CountedObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
  record_ += L"name ";
  const bool is_known = manners_.has_value_member && std::wstring(names[0]) == L"value";
  ids[0] = is_known ? kValueMember : DISPID_UNKNOWN;
  return is_known ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT CountedObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                              EXCEPINFO*, UINT*) {
  record_ += std::to_wstring(id) + L":" + std::to_wstring(flags) + L" ";
  const bool is_known = id == kValueMember || (id == DISPID_VALUE && manners_.has_default_member);
  if (!is_known) return DISP_E_MEMBERNOTFOUND;
  if ((flags & DISPATCH_PROPERTYGET) != 0) {
    if (FAILED(manners_.reading) || result == nullptr) return manners_.reading;
    return VariantCopy(result, &value_);
  }
  if (FAILED(manners_.writing) || arguments->cArgs != 1) return manners_.writing;
  return VariantCopy(&value_, &arguments->rgvarg[0]);
}

}  // namespace kesp::variants
