// Calls by name, with arguments left out or by their names, as a late-bound client in C++ makes them.
#pragma once

#include <vector>

#include "kesp.h"

// Calls a method that returns a Boolean. `arguments` come in reverse, those with names first; `names` are the
// member's own, then those of the arguments.
inline bool Call(IDispatch* object, std::vector<std::wstring> names, std::vector<VARIANT> arguments) {
  std::vector<OLECHAR*> texts;
  for (std::wstring& name : names) texts.push_back(name.data());
  std::vector<DISPID> ids(names.size());
  Check(object->GetIDsOfNames(IID_NULL, texts.data(), static_cast<UINT>(texts.size()), LOCALE_USER_DEFAULT,
                              ids.data()));
  DISPPARAMS given{.rgvarg = arguments.data(),
                   .rgdispidNamedArgs = ids.data() + 1,
                   .cArgs = static_cast<UINT>(arguments.size()),
                   .cNamedArgs = static_cast<UINT>(ids.size() - 1)};
  VARIANT result;
  VariantInit(&result);
  Check(object->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &given, &result, nullptr,
                       nullptr));
  return V_VT(&result) == VT_BOOL && V_BOOL(&result) != VARIANT_FALSE;
}

inline VARIANT Argument(const Text& text) {
  VARIANT argument;
  V_VT(&argument) = VT_BSTR;
  V_BSTR(&argument) = text.get();
  return argument;
}

inline VARIANT Argument(BSTR* variable) {
  VARIANT argument;
  V_VT(&argument) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&argument) = variable;
  return argument;
}

inline VARIANT Argument(long number) {
  VARIANT argument;
  V_VT(&argument) = VT_I4;
  V_I4(&argument) = number;
  return argument;
}
