// A spy on COM's allocator.
#include "tests/faults/com_blocks.h"

#include <objbase.h>
#include <objidl.h>
#include <windows.h>

#include <mutex>

#include "tests/faults/injector.h"

namespace kesp::faults {

namespace {

class Spy final : public IMallocSpy {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IMallocSpy ? this : nullptr;
    return *object == nullptr ? E_NOINTERFACE : S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
  void* STDMETHODCALLTYPE PostAlloc(void* block) override {
    Note(block);
    return block;
  }
  void* STDMETHODCALLTYPE PreFree(void* block, BOOL) override {
    const std::lock_guard locked(mutex_);
    held_.erase(block);
    return block;
  }
  void STDMETHODCALLTYPE PostFree(BOOL) override {}
  SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** given, BOOL) override {
    *given = block;
    const std::lock_guard locked(mutex_);
    held_.erase(block);
    return size;
  }
  void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL) override {
    Note(block);
    return block;
  }
  void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
  SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
  void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
  int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int answer) override { return answer; }
  void STDMETHODCALLTYPE PreHeapMinimize() override {}
  void STDMETHODCALLTYPE PostHeapMinimize() override {}

  std::unordered_map<void*, std::vector<void*>> Held() {
    const std::lock_guard locked(mutex_);
    return held_;
  }
  std::size_t Count() {
    const std::lock_guard locked(mutex_);
    return held_.size();
  }

 private:
  void Note(void* block) {
    if (block == nullptr) return;
    std::vector<void*> stack;
    if (TheInjector().keeps_stacks) stack = StackHere();
    const std::lock_guard locked(mutex_);
    held_[block] = std::move(stack);
  }

  std::mutex mutex_;
  std::unordered_map<void*, std::vector<void*>> held_;
};

// Never destroyed, since COM asks it to the end.
Spy& TheSpy() {
  static Spy* spy = new Spy;
  return *spy;
}

}  // namespace

void CountComBlocks() {
  CoRegisterMallocSpy(&TheSpy());
  const FARPROC no_cache = GetProcAddress(LoadLibraryW(L"oleaut32.dll"), "SetOaNoCache");
  if (no_cache != nullptr) reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(no_cache))();
}

std::size_t ComBlocksHeld() {
  return TheSpy().Count();
}

std::unordered_map<void*, std::vector<void*>> HeldComBlocks() {
  return TheSpy().Held();
}

}  // namespace kesp::faults
