// An object with a member "value", as JScript hands it over in place of a variable for a result.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/clients/automation.h"

namespace kesp::clients {

// It lives in the test itself, so that its references are not counted.
class ResultHolder final : public IDispatch {
 public:
  Value value{L"before"};
  bool has_value = true;
  HRESULT reading = S_OK;
  HRESULT writing = S_OK;
  std::function<void()> on_get = [] {};
  std::function<void()> on_put = [] {};
  int puts = 0;
  ULONG references = 1;

  // As an argument by value. The object keeps owning itself.
  VARIANT argument() {
    VARIANT object;
    VariantInit(&object);
    V_VT(&object) = VT_DISPATCH;
    V_DISPATCH(&object) = this;
    return object;
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const bool known = has_value && names[0] == std::wstring(L"value");
    ids[0] = known ? kValue : DISPID_UNKNOWN;
    return known ? S_OK : DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    if (id != kValue) return DISP_E_MEMBERNOTFOUND;
    if (flags == DISPATCH_PROPERTYGET) {
      on_get();
      return FAILED(reading) ? reading : VariantCopy(result, value.get());
    }
    EXPECT_EQ(flags, DISPATCH_PROPERTYPUT);
    EXPECT_EQ(arguments->cArgs, 1u);
    EXPECT_EQ(arguments->cNamedArgs, 1u);
    ++puts;
    on_put();
    return FAILED(writing) ? writing : VariantCopy(value.get(), arguments->rgvarg);
  }

 private:
  static constexpr DISPID kValue = 7;
};

}  // namespace kesp::clients
