// A spy on COM's allocator.
#pragma once

#include <functional>

#include "tests/clients/automation.h"

namespace kesp::clients {

// Tells of the blocks of COM's allocator in this process: texts and arrays of automation, type information,
// error information, and what else passes between client and library. One at a time, from before the first of
// them. Texts are given back to COM at once from then on, not kept for the next one.
class ComBlockSpy final : public IMallocSpy {
 public:
  using Action = std::function<void(void* block)>;

  // The actions are for each block that was taken, and for each that is about to be given back.
  ComBlockSpy(Action taken, Action given_back);
  ~ComBlockSpy();
  ComBlockSpy(const ComBlockSpy&) = delete;
  ComBlockSpy& operator=(const ComBlockSpy&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override { return size; }
  STDMETHODIMP_(void*) PostAlloc(void* block) override { return Taken(block); }
  STDMETHODIMP_(void*) PreFree(void* block, BOOL is_ours) override;
  STDMETHODIMP_(void) PostFree(BOOL) override {}
  STDMETHODIMP_(SIZE_T) PreRealloc(void* block, SIZE_T size, void** place, BOOL is_ours) override;
  STDMETHODIMP_(void*) PostRealloc(void* block, BOOL is_ours) override;
  STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return block; }
  STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
  STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return block; }
  STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int did) override { return did; }
  STDMETHODIMP_(void) PreHeapMinimize() override {}
  STDMETHODIMP_(void) PostHeapMinimize() override {}

 private:
  void* Taken(void* block);

  Action taken_;
  Action given_back_;
};

}  // namespace kesp::clients
