// An event handler that writes down what it hears, and can act.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <string>

#include "support/lines_fixture.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

// A sink for the events of one dispinterface, which expects each argument to have its declared type. It is
// made with one reference; Make hands it to a ComPtr.
class EventRecorder final : public IDispatch {
 public:
  using Handler = std::function<void(DISPPARAMS& arguments)>;

  // Names of events are looked up in the registered type library.
  static ComPtr<EventRecorder> Make(const IID& events);

  // What was heard, as "Name(first,second)", in that order.
  Lines journal;
  // Run after the event was written down.
  std::map<std::wstring, Handler> handlers;
  // Where more than one recorder listens: told of each event, after this one's own journal.
  std::function<void(const std::wstring&)> listener;
  // Whether a query for the event interface itself is answered (script hosts answer IDispatch only).
  bool knows_events = true;
  // What Invoke returns.
  HRESULT result = S_OK;

  std::size_t Count(const std::wstring& name) const;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                                   UINT*) override;

  // The number of references, to see who holds it.
  ULONG references() const { return references_; }

 private:
  explicit EventRecorder(const IID& events);
  ~EventRecorder() = default;

  IID events_;
  ComPtr<ITypeInfo> info_;
  std::atomic<ULONG> references_ = 1;
};

// A handler's connection to an object, ended by Disconnect or with its life.
class Connection {
 public:
  Connection(IUnknown* source, const IID& events, IUnknown* sink);
  ~Connection() { Disconnect(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Disconnect();
  // Leaves the sink to the object: nobody keeps the connection point.
  void Abandon();

 private:
  ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
};

}  // namespace kesp::clients
