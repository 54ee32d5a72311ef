// A handler of events that runs one action at each, in a program without a test framework.
#pragma once

#include <functional>
#include <utility>

#include "tests/clients/automation.h"

namespace kesp::threads {

// Lives where it stands, as long as the process: whoever holds a reference holds nothing.
class BareSink final : public IDispatch {
 public:
  explicit BareSink(std::function<void()> action) : action_(std::move(action)) {}

  void Connect(IUnknown* source, const IID& events) {
    clients::ComPtr<IConnectionPointContainer> container;
    clients::ComPtr<IConnectionPoint> point;
    DWORD cookie = 0;
    if (SUCCEEDED(source->QueryInterface(IID_IConnectionPointContainer,
                                         reinterpret_cast<void**>(container.GetAddressOf()))) &&
        SUCCEEDED(container->FindConnectionPoint(events, &point))) {
      point->Advise(this, &cookie);
    }
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    action_();
    return S_OK;
  }

 private:
  std::function<void()> action_;
};

}  // namespace kesp::threads
