// How much of the process's memory is in use.
#pragma once

#include "tests/clients/automation.h"

namespace kesp::variants {

// Counts the blocks of COM's allocator: texts, arrays, and what else passes between client and library. One
// at a time, from before the first of them.
class BlockCount final : public IMallocSpy {
 public:
  BlockCount();
  ~BlockCount();
  BlockCount(const BlockCount&) = delete;
  BlockCount& operator=(const BlockCount&) = delete;

  // Blocks taken and not given back.
  long alive() const { return alive_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override { return size; }
  STDMETHODIMP_(void*) PostAlloc(void* block) override;
  STDMETHODIMP_(void*) PreFree(void* block, BOOL is_ours) override;
  STDMETHODIMP_(void) PostFree(BOOL) override {}
  STDMETHODIMP_(SIZE_T) PreRealloc(void* block, SIZE_T size, void** place, BOOL) override;
  STDMETHODIMP_(void*) PostRealloc(void* block, BOOL) override { return block; }
  STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return block; }
  STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
  STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return block; }
  STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int did) override { return did; }
  STDMETHODIMP_(void) PreHeapMinimize() override {}
  STDMETHODIMP_(void) PostHeapMinimize() override {}

 private:
  volatile LONG alive_ = 0;
};

// The blocks in use in all heaps of the process.
std::size_t HeapBlocks();

}  // namespace kesp::variants
