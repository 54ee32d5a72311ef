// Advising, enumerating and calling event handlers.
#include "server/connection_points.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "server/object_enumerator.h"

namespace kesp {

using Microsoft::WRL::ComPtr;

namespace {

struct ConnectionTraits {
  static HRESULT Copy(const Sink& sink, CONNECTDATA* element) {
    element->dwCookie = sink.cookie;
    element->pUnk = sink.handler.Get();
    element->pUnk->AddRef();
    return S_OK;
  }
};

struct ConnectionPointTraits {
  static HRESULT Copy(const ComPtr<IConnectionPoint>& point, IConnectionPoint** element) {
    return point.CopyTo(element);
  }
};

using ConnectionEnumerator = ObjectEnumerator<IEnumConnections, CONNECTDATA, Sink, ConnectionTraits>;
using ConnectionPointEnumerator = ObjectEnumerator<IEnumConnectionPoints, IConnectionPoint*,
                                                   ComPtr<IConnectionPoint>, ConnectionPointTraits>;

// The handler's process ended without disconnecting.
bool IsGone(HRESULT result) {
  return result == RPC_E_DISCONNECTED || result == CO_E_OBJNOTCONNECTED || result == RPC_E_SERVER_DIED ||
         result == RPC_E_SERVER_DIED_DNE || result == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
}

}  // namespace

void EventSource::Raise(DISPID event, std::vector<VARIANT> arguments) {
  if (sinks_.empty()) return;
  const std::vector<Sink> snapshot = sinks_;
  // A handler may drop the last reference to the object.
  const ComPtr<IUnknown> keep_alive = owner_;
  for (const Sink& sink : snapshot) {
    if (!IsConnected(sink.cookie)) continue;
    DISPPARAMS parameters{.rgvarg = arguments.data(),
                          .rgdispidNamedArgs = nullptr,
                          .cArgs = static_cast<UINT>(arguments.size()),
                          .cNamedArgs = 0};
    const HRESULT result = sink.handler->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                &parameters, nullptr, nullptr, nullptr);
    if (IsGone(result)) Disconnect(sink.cookie);
  }
}

bool EventSource::IsConnected(DWORD cookie) const {
  return std::any_of(sinks_.begin(), sinks_.end(), [&](const Sink& sink) { return sink.cookie == cookie; });
}

HRESULT EventSource::Disconnect(DWORD cookie) {
  const auto found =
      std::find_if(sinks_.begin(), sinks_.end(), [&](const Sink& sink) { return sink.cookie == cookie; });
  if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
  // Released only when it is off the list: the release may run code of the client.
  const ComPtr<IDispatch> handler = std::move(found->handler);
  sinks_.erase(found);
  return S_OK;
}

HRESULT EventSource::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  try {
    auto list = std::make_shared<std::vector<ComPtr<IConnectionPoint>>>();
    list->emplace_back(&point_);
    *points = new ConnectionPointEnumerator(std::move(list));
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT EventSource::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  // Script hosts and Visual Basic look the events up by the general interface, too.
  if (iid != point_.events() && iid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
  *point = &point_;
  AddRef();
  return S_OK;
}

HRESULT EventSource::Point::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = (iid == IID_IUnknown || iid == IID_IConnectionPoint) ? this : nullptr;
  if (*object == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT EventSource::Point::GetConnectionInterface(IID* iid) {
  if (iid == nullptr) return E_POINTER;
  *iid = events_;
  return S_OK;
}

HRESULT EventSource::Point::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (container == nullptr) return E_POINTER;
  *container = &source_;
  AddRef();
  return S_OK;
}

HRESULT EventSource::Point::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie == nullptr) return E_POINTER;
  *cookie = 0;
  if (sink == nullptr) return E_POINTER;
  ComPtr<IDispatch> handler;
  if (FAILED(sink->QueryInterface(events_, reinterpret_cast<void**>(handler.GetAddressOf()))) &&
      FAILED(sink->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(handler.GetAddressOf())))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  try {
    source_.sinks_.push_back({.cookie = ++source_.last_cookie_, .handler = std::move(handler)});
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  *cookie = source_.last_cookie_;
  return S_OK;
}

HRESULT EventSource::Point::Unadvise(DWORD cookie) {
  return source_.Disconnect(cookie);
}

HRESULT EventSource::Point::EnumConnections(IEnumConnections** connections) {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  try {
    *connections = new ConnectionEnumerator(std::make_shared<std::vector<Sink>>(source_.sinks_));
    return S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace kesp
