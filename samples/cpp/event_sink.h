// An event handler of the library: hears the events of one dispinterface until the end of its life.
#pragma once

#include "kesp.h"

// It lives where its owner keeps it, so its references are not counted. It must outlive no call of the
// object.
class EventSink : public IDispatch {
 public:
  EventSink(IUnknown* source, const IID& events) : events_(events) {
    ComPtr<IConnectionPointContainer> container;
    Check(source->QueryInterface(IID_PPV_ARGS(&container)));
    Check(container->FindConnectionPoint(events, &point_));
    Check(point_->Advise(this, &cookie_));
  }
  virtual ~EventSink() { point_->Unadvise(cookie_); }
  EventSink(const EventSink&) = delete;
  EventSink& operator=(const EventSink&) = delete;

  // `arguments` come in reverse: the last one is rgvarg[0].
  virtual void Heard(DISPID event, const DISPPARAMS& arguments) = 0;

  STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    Heard(event, *arguments);
    return S_OK;
  }
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == events_;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

 private:
  IID events_;
  ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};
