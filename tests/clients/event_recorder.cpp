// Recording events, and connecting to them.
#include "tests/clients/event_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "KespCommObj.h"

namespace kesp::clients {

namespace {

std::wstring TextOf(const VARIANT& argument) {
  switch (V_VT(&argument)) {
    case VT_I2:
      return std::to_wstring(V_I2(&argument));
    case VT_I4:
      return std::to_wstring(V_I4(&argument));
    case VT_BSTR:
      return {V_BSTR(&argument), SysStringLen(V_BSTR(&argument))};
    case VT_BYREF | VT_BSTR:
      return L"&" + std::wstring(*V_BSTRREF(&argument), SysStringLen(*V_BSTRREF(&argument)));
    case VT_BYREF | VT_BOOL:
      return *V_BOOLREF(&argument) == VARIANT_FALSE ? L"&False" : L"&True";
    default:
      return L"type " + std::to_wstring(V_VT(&argument));
  }
}

// As which type an argument that is declared so arrives.
VARTYPE ArrivingAs(const TYPEDESC& declared) {
  if (declared.vt == VT_PTR) return static_cast<VARTYPE>(VT_BYREF | ArrivingAs(*declared.lptdesc));
  return declared.vt == VT_USERDEFINED ? static_cast<VARTYPE>(VT_I4) : declared.vt;
}

// Expects the arguments of an event to be of the types that the type library declares.
void ExpectDeclaredTypes(ITypeInfo* events, DISPID id, const DISPPARAMS& arguments) {
  FUNCDESC* function = nullptr;
  for (UINT i = 0; events->GetFuncDesc(i, &function) == S_OK; ++i) {
    if (function->memid == id) {
      EXPECT_EQ(static_cast<UINT>(function->cParams), arguments.cArgs) << "event " << id;
      for (UINT n = 0; n < arguments.cArgs; ++n) {
        EXPECT_EQ(V_VT(&arguments.rgvarg[arguments.cArgs - 1 - n]),
                  ArrivingAs(function->lprgelemdescParam[n].tdesc))
            << "argument " << n << " of event " << id;
      }
    }
    events->ReleaseFuncDesc(function);
  }
}

}  // namespace

ComPtr<EventRecorder> EventRecorder::Make(const IID& events) {
  return Adopt(new EventRecorder(events));
}

EventRecorder::EventRecorder(const IID& events) : events_(events) {
  ComPtr<ITypeLib> library;
  EXPECT_EQ(LoadRegTypeLib(LIBID_KespCommObj, 1, 0, 0, &library), S_OK);
  if (library) library->GetTypeInfoOfGuid(events, &info_);
}

std::size_t EventRecorder::Count(const std::wstring& name) const {
  return static_cast<std::size_t>(
      std::count_if(journal.begin(), journal.end(),
                    [&](const std::wstring& entry) { return entry.starts_with(name + L"("); }));
}

HRESULT EventRecorder::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == IID_IUnknown || iid == IID_IDispatch || (knows_events && iid == events_);
  *object = known ? this : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG EventRecorder::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT EventRecorder::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT EventRecorder::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT*,
                              EXCEPINFO*, UINT*) {
  EXPECT_EQ(flags, DISPATCH_METHOD);
  EXPECT_EQ(arguments->cNamedArgs, 0u);
  ExpectDeclaredTypes(info_.Get(), id, *arguments);
  Text name;
  UINT names = 0;
  info_->GetNames(id, name.out(), 1, &names);
  std::wstring entry = name.str() + L"(";
  for (UINT i = arguments->cArgs; i-- > 0;) {
    entry += TextOf(arguments->rgvarg[i]) + (i > 0 ? L"," : L"");
  }
  entry += L")";
  journal.push_back(entry);
  if (listener) listener(entry);
  const auto found = handlers.find(name.str());
  if (found == handlers.end()) return result;
  const Handler handler = found->second;  // it may take itself out of the map
  const ComPtr<EventRecorder> keep_alive = this;
  handler(*arguments);
  return result;
}

Connection::Connection(IUnknown* source, const IID& events, IUnknown* sink) {
  ComPtr<IConnectionPointContainer> container;
  EXPECT_EQ(source->QueryInterface(IID_IConnectionPointContainer,
                                   reinterpret_cast<void**>(container.GetAddressOf())),
            S_OK);
  EXPECT_EQ(container->FindConnectionPoint(events, &point_), S_OK);
  EXPECT_EQ(point_->Advise(sink, &cookie_), S_OK);
}

void Connection::Disconnect() {
  if (cookie_ != 0) point_->Unadvise(std::exchange(cookie_, 0));
  point_.Reset();
}

void Connection::Abandon() {
  cookie_ = 0;
  point_.Reset();
}

}  // namespace kesp::clients
