// An object of the client's own, whose references are counted.
#pragma once

#include <string>

#include "tests/clients/automation.h"

namespace kesp::variants {

// What such an object can do.
struct Manners {
  bool has_value_member = false;    // "value", which takes results
  bool has_default_member = false;  // what the automation library converts
  HRESULT reading = S_OK;           // what asking for either comes to
  HRESULT writing = S_OK;
};

// Lives where it is made, and is not deleted by its last reference: whoever made it looks at the count.
class CountedObject final : public IDispatch {
 public:
  // `value` is moved in.
  CountedObject(const Manners& manners, VARIANT value) : manners_(manners), value_(value) {}
  ~CountedObject() { VariantClear(&value_); }
  CountedObject(const CountedObject&) = delete;
  CountedObject& operator=(const CountedObject&) = delete;

  // Besides that of its maker.
  ULONG references() const { return references_; }
  const VARIANT& value() const { return value_; }
  // What was asked of it, in order.
  const std::wstring& record() const { return record_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO*,
                      UINT*) override;

 private:
  const Manners manners_;
  VARIANT value_;
  std::wstring record_;
  ULONG references_ = 0;
};

}  // namespace kesp::variants
