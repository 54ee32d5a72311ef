// Class factories.
#pragma once

#include <atomic>

#include "server/class_table.h"
#include "server/com_headers.h"
#include "server/module.h"

namespace kesp {

// The factory of one class of the table. It holds the module while a client holds it.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const CreatableClass& entry) : entry_(entry) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;

  // Refuses aggregation with CLASS_E_NOAGGREGATION.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 private:
  ~ClassFactory() = default;

  const CreatableClass& entry_;
  const ModuleLock module_lock_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace kesp
