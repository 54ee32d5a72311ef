// Late-bound calls.
#include "tests/clients/late_object.h"

#include <gtest/gtest.h>

namespace kesp::clients {

namespace {

std::wstring Take(BSTR text) {
  std::wstring taken = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
  SysFreeString(text);
  return taken;
}

}  // namespace

VARIANT Variable(Value& value) {
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference) = value.get();
  return reference;
}

VARIANT Reference(BSTR* text) {
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&reference) = text;
  return reference;
}

VARIANT Reference(SAFEARRAY** bytes) {
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_ARRAY | VT_UI1;
  V_ARRAYREF(&reference) = bytes;
  return reference;
}

HRESULT LateObject::IdsOf(const std::vector<std::wstring>& names, std::vector<DISPID>& ids) const {
  std::vector<LPOLESTR> pointers;
  for (const std::wstring& name : names) pointers.push_back(const_cast<LPOLESTR>(name.c_str()));
  ids.assign(names.size(), DISPID_UNKNOWN);
  return object_->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(pointers.size()),
                                LOCALE_USER_DEFAULT, ids.data());
}

DISPID LateObject::IdOf(const std::wstring& name) const {
  std::vector<DISPID> ids;
  EXPECT_EQ(IdsOf({name}, ids), S_OK) << testing::PrintToString(name);
  return ids.front();
}

Outcome LateObject::Call(const std::wstring& name, const std::vector<VARIANT>& arguments,
                         const std::vector<Named>& named) const {
  std::vector<std::wstring> names = {name};
  for (const Named& argument : named) names.push_back(argument.first);
  std::vector<DISPID> ids;
  EXPECT_EQ(IdsOf(names, ids), S_OK) << testing::PrintToString(name);
  std::vector<std::pair<DISPID, VARIANT>> identified;
  for (std::size_t i = 0; i < named.size(); ++i) identified.emplace_back(ids[i + 1], named[i].second);
  return Invoke(ids.front(), DISPATCH_METHOD, arguments, identified);
}

Outcome LateObject::Get(const std::wstring& name) const {
  return Invoke(IdOf(name), DISPATCH_PROPERTYGET, {});
}

Outcome LateObject::Put(const std::wstring& name, const VARIANT& value) const {
  return Invoke(IdOf(name), DISPATCH_PROPERTYPUT, {}, {{DISPID_PROPERTYPUT, value}});
}

Outcome LateObject::Invoke(DISPID id, WORD flags, const std::vector<VARIANT>& arguments,
                           const std::vector<std::pair<DISPID, VARIANT>>& named) const {
  // Named arguments stand first, the others last to first behind them.
  std::vector<VARIANT> all;
  std::vector<DISPID> names;
  for (const auto& [name, value] : named) {
    names.push_back(name);
    all.push_back(value);
  }
  all.insert(all.end(), arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{.rgvarg = all.data(),
                        .rgdispidNamedArgs = names.data(),
                        .cArgs = static_cast<UINT>(all.size()),
                        .cNamedArgs = static_cast<UINT>(names.size())};
  Outcome outcome;
  EXCEPINFO exception{};
  const bool is_put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  outcome.result = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                   is_put ? nullptr : outcome.value.get(), &exception, &outcome.bad_argument);
  if (outcome.result != DISP_E_EXCEPTION) return outcome;
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  outcome.scode = exception.scode;
  outcome.source = Take(exception.bstrSource);
  outcome.description = Take(exception.bstrDescription);
  SysFreeString(exception.bstrHelpFile);
  return outcome;
}

}  // namespace kesp::clients
