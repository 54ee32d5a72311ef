// Listening to a discovery.
#include "bench/discovery_watch.h"

#include "bench/calls.h"
#include "bench/measure.h"

namespace kesp::bench {

using Microsoft::WRL::ComPtr;

namespace {

ComPtr<ITypeInfo> EventTypes() {
  ComPtr<ITypeLib> library;
  CheckResult(LoadRegTypeLib(::LIBID_KespCommObj, 1, 0, LOCALE_NEUTRAL, &library), "LoadRegTypeLib");
  ComPtr<ITypeInfo> events;
  CheckResult(library->GetTypeInfoOfGuid(__uuidof(::__CKespTCP), &events), "GetTypeInfoOfGuid");
  return events;
}

DISPID EventOf(ITypeInfo* events, const wchar_t* name) {
  DISPID id = 0;
  auto* text = const_cast<wchar_t*>(name);
  CheckResult(events->GetIDsOfNames(&text, 1, &id), "GetIDsOfNames");
  return id;
}

}  // namespace

DiscoveryWatch::DiscoveryWatch(IUnknown* transport, DWORD pause_ms) : pause_ms_(pause_ms) {
  const ComPtr<ITypeInfo> events = EventTypes();
  arrival_begin_ = EventOf(events.Get(), L"DataArrivalBegin");
  arrival_end_ = EventOf(events.Get(), L"DataArrivalEnd");
  connect_ = EventOf(events.Get(), L"ConnectBegin");
  ComPtr<IConnectionPointContainer> container;
  CheckResult(transport->QueryInterface(IID_PPV_ARGS(&container)), "the connection point container");
  CheckResult(container->FindConnectionPoint(__uuidof(::__CKespTCP), &point_), "FindConnectionPoint");
  CheckResult(point_->Advise(this, &cookie_), "Advise");
}

DiscoveryWatch::~DiscoveryWatch() {
  point_->Unadvise(cookie_);
}

HRESULT DiscoveryWatch::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(::__CKespTCP);
  *object = known ? this : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

HRESULT DiscoveryWatch::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT DiscoveryWatch::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  if (id == arrival_begin_) OnArrivalBegin();
  if (id == arrival_end_) OnArrivalEnd();
  if (id == connect_) OnConnect();
  return S_OK;
}

void DiscoveryWatch::OnArrivalBegin() {
  // What arrives later are identities.
  if (connections_ > 0) return;
  if (++answers_ == 1) {
    Sleep(pause_ms_);
    first_answer_ = MicrosecondsNow();
  }
  this_answer_ = MicrosecondsNow();
}

void DiscoveryWatch::OnArrivalEnd() {
  if (connections_ > 0) return;
  last_answer_ = MicrosecondsNow();
  handling_ += last_answer_ - this_answer_;
}

void DiscoveryWatch::OnConnect() {
  last_connection_ = MicrosecondsNow();
  if (++connections_ == 1) first_connection_ = last_connection_;
}

}  // namespace kesp::bench
