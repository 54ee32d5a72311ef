// The base of every object that the library hands out: life, type, errors and late binding.
#pragma once

#include <atomic>
#include <utility>

#include "server/class_description.h"
#include "server/com_headers.h"
#include "server/com_values.h"
#include "server/dispatch.h"
#include "server/error_bridge.h"
#include "server/module.h"
#include "server/type_info_cache.h"

namespace kesp {

// The parts that do not depend on the interface, as plain functions.
HRESULT DescribeClass(const ClassDescription& description, ITypeInfo** type_info) noexcept;
HRESULT GuidOfClass(const ClassDescription& description, DWORD kind, GUID* guid) noexcept;

// An object with the dual interface Interface. It is made with one reference, which belongs to the maker; it
// belongs to the apartment in which it was made. Derived classes implement the interface's own members, each
// through Guarded (error_bridge.h), and answer for further interfaces in FindInterface.
template <class Interface>
class AutomationObject : public Interface, public ISupportErrorInfo, public IProvideClassInfo2 {
 public:
  explicit AutomationObject(const ClassDescription& description)
      : description_(description), info_(InterfaceInfoOf(description.default_interface)) {}
  AutomationObject(const AutomationObject&) = delete;
  AutomationObject& operator=(const AutomationObject&) = delete;

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == description_.default_interface) {
      *object = static_cast<Interface*>(this);
    } else if (iid == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
      *object = static_cast<IProvideClassInfo2*>(this);
    } else {
      *object = FindInterface(iid);
    }
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      // What runs while the object is torn down may take and drop references to it; it must not die twice.
      references_ = kTearingDown;
      delete this;
    }
    return left;
  }

  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** type_info) override {
    return DispatchGetTypeInfo(info_, index, type_info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    return DispatchGetIDsOfNames(info_, iid, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) override {
    return DispatchInvoke(info_, static_cast<Interface*>(this), id, iid, locale, flags, arguments, result,
                          exception, bad_argument);
  }

  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
    return iid == description_.default_interface ? S_OK : S_FALSE;
  }

  // IProvideClassInfo2
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** type_info) override {
    return DescribeClass(description_, type_info);
  }
  HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) override {
    return GuidOfClass(description_, kind, guid);
  }

 protected:
  virtual ~AutomationObject() = default;

  // A further interface of the object, without a reference; null for an unknown one.
  virtual void* FindInterface(REFIID) { return nullptr; }

  // The body of a member that hands nothing out. The pointers are those that must not be null.
  template <class Body, class... Pointers>
  HRESULT Put(Body&& body, Pointers*... pointers) noexcept {
    return Guarded(static_cast<Interface*>(this), description_.default_interface, std::forward<Body>(body),
                   pointers...);
  }

  // The body of a member with a result: `value` computes it. After a failure the result is 0 or null. Further
  // pointers are those that must not be null.
  template <class Result, class Value, class... Pointers>
  HRESULT Get(Result* result, Value&& value, Pointers*... pointers) noexcept {
    if (result != nullptr) *result = Result{};
    return Put([&] { *result = ToComAs<Result>(value()); }, result, pointers...);
  }

 private:
  static constexpr ULONG kTearingDown = 0x40000000;

  const ClassDescription& description_;
  const InterfaceInfo& info_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace kesp
