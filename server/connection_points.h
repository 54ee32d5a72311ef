// The connection point of a class that raises events, and its container.
#pragma once

#include <wrl/client.h>

#include <vector>

#include "server/com_headers.h"

namespace kesp {

// One event handler of a client.
struct Sink {
  DWORD cookie = 0;
  Microsoft::WRL::ComPtr<IDispatch> handler;
};

// IConnectionPointContainer with the one connection point of an object. Both are parts of that object: they
// share its references, and only the container's interface can be asked of the object itself.
class EventSource final : public IConnectionPointContainer {
 public:
  // `owner` is the object that this is part of, `events` its event dispinterface.
  EventSource(IUnknown* owner, const IID& events) : owner_(owner), point_(*this, events) {}
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;

  // Raises an event: calls each handler that is connected now, in the order of connection, except those that
  // are disconnected before their turn. arguments stand last to first, as Invoke wants them. What a handler
  // returns does not matter; handlers whose process is gone are disconnected.
  void Raise(DISPID event, std::vector<VARIANT> arguments = {});

  bool HasSinks() const { return !sinks_.empty(); }

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    return owner_->QueryInterface(iid, object);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return owner_->AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return owner_->Release(); }

  // IConnectionPointContainer
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override;
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

 private:
  // The connection point has an identity of its own.
  class Point final : public IConnectionPoint {
   public:
    Point(EventSource& source, const IID& events) : source_(source), events_(events) {}

    const IID& events() const { return events_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return source_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return source_.Release(); }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override;

   private:
    EventSource& source_;
    const IID& events_;
  };

  bool IsConnected(DWORD cookie) const;
  HRESULT Disconnect(DWORD cookie);

  IUnknown* owner_;
  Point point_;
  std::vector<Sink> sinks_;
  DWORD last_cookie_ = 0;
};

}  // namespace kesp
