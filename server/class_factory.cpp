// Making objects for COM.
#include "server/class_factory.h"

#include "server/error_bridge.h"

namespace kesp {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = (iid == IID_IUnknown || iid == IID_IClassFactory) ? this : nullptr;
  if (*object == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG ClassFactory::Release() {
  const ULONG left = --references_;
  if (left == 0) {
    const ModuleLock lock;
    delete this;
  }
  return left;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  KeepModule();
  try {
    IUnknown* made = entry_.create();
    const HRESULT result = made->QueryInterface(iid, object);
    made->Release();
    return result;
  } catch (...) {
    return ReportException(IID_IClassFactory);
  }
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  if (lock) {
    LockModule();
  } else {
    UnlockModule();
  }
  return S_OK;
}

}  // namespace kesp
