// The sink of one dispinterface.
#include "console/event_sink_win.h"

#include <ocidl.h>

#include <atomic>
#include <utility>

#include "console/com_calls_win.h"
#include "console/wide_text_win.h"

namespace kesp::console {

VARIANT& EventArguments::At(UINT place) const {
  // They arrive in the reverse order.
  return arguments_.rgvarg[arguments_.cArgs - 1 - place];
}

int EventArguments::Number(UINT place) const {
  const VARIANT& value = At(place);
  return V_VT(&value) == VT_I2 ? V_I2(&value) : V_I4(&value);
}

std::string EventArguments::Text(UINT place) const {
  BSTR text = V_BSTR(&At(place));
  return ToUtf8({text, SysStringLen(text)});
}

void EventArguments::SetTrue(UINT place) {
  *V_BOOLREF(&At(place)) = VARIANT_TRUE;
}

// Made with one reference. Once disconnected it is told nothing more, whoever still holds it.
class EventConnection::Sink final : public IDispatch {
 public:
  Sink(const IID& events, OnEvent on_event, std::exception_ptr& thrown)
      : events_(events), on_event_(std::move(on_event)), thrown_(thrown) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == events_;
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                                   EXCEPINFO*, UINT*) override {
    try {
      on_event_(event, EventArguments(*arguments));
    } catch (...) {
      thrown_ = std::current_exception();
    }
    return S_OK;
  }

 private:
  ~Sink() = default;

  IID events_;
  OnEvent on_event_;
  std::exception_ptr& thrown_;
  std::atomic<ULONG> references_ = 1;
};

EventConnection::EventConnection(IUnknown* source, const IID& events, OnEvent on_event) {
  ComPtr<IConnectionPointContainer> container;
  Check(source->QueryInterface(IID_IConnectionPointContainer,
                               reinterpret_cast<void**>(container.GetAddressOf())));
  Check(container->FindConnectionPoint(events, &point_));
  auto* const sink = new Sink(events, std::move(on_event), thrown_);
  const HRESULT result = point_->Advise(sink, &cookie_);
  sink->Release();
  Check(result);
}

EventConnection::~EventConnection() {
  if (cookie_ != 0) point_->Unadvise(cookie_);
}

void EventConnection::Rethrow() const {
  if (thrown_) std::rethrow_exception(thrown_);
}

}  // namespace kesp::console
