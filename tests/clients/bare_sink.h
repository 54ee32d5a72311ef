// A handler of events that counts them, in a program without a test framework.
#pragma once

#include <functional>
#include <utility>

#include "tests/clients/automation.h"

namespace kesp::clients {

// Lives where it stands: whoever holds a reference holds nothing. It hears no more when it is destroyed.
class BareSink final : public IDispatch {
 public:
  // The action runs at each event.
  explicit BareSink(std::function<void()> action = [] {}) : action_(std::move(action)) {}
  ~BareSink() {
    if (cookie_ != 0) point_->Unadvise(cookie_);
  }
  BareSink(const BareSink&) = delete;
  BareSink& operator=(const BareSink&) = delete;

  // Once.
  HRESULT Connect(IUnknown* source, const IID& events) {
    ComPtr<IConnectionPointContainer> container;
    HRESULT result = source->QueryInterface(IID_PPV_ARGS(container.GetAddressOf()));
    if (SUCCEEDED(result)) result = container->FindConnectionPoint(events, point_.GetAddressOf());
    if (SUCCEEDED(result)) result = point_->Advise(this, &cookie_);
    return result;
  }
  bool is_connected() const { return cookie_ != 0; }
  IConnectionPoint* point() const { return point_.Get(); }
  int heard() const { return heard_; }

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
    ++heard_;
    action_();
    return S_OK;
  }

 private:
  std::function<void()> action_;
  ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
  int heard_ = 0;
};

}  // namespace kesp::clients
