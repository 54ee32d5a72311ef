// Counting blocks.
#include "tests/variants/block_count.h"

#include <array>

namespace kesp::variants {

BlockCount::BlockCount() {
  // Without the cache of texts, which would hide those that are not freed.
  using SetOaNoCacheFunction = void(WINAPI*)();
  const FARPROC found = GetProcAddress(LoadLibraryW(L"oleaut32.dll"), "SetOaNoCache");
  if (found != nullptr) reinterpret_cast<SetOaNoCacheFunction>(reinterpret_cast<void*>(found))();
  CoRegisterMallocSpy(this);
}

BlockCount::~BlockCount() {
  CoRevokeMallocSpy();
}

HRESULT BlockCount::QueryInterface(REFIID iid, void** object) {
  const bool is_known = iid == IID_IUnknown || iid == IID_IMallocSpy;
  *object = is_known ? this : nullptr;
  return is_known ? S_OK : E_NOINTERFACE;
}

void* BlockCount::PostAlloc(void* block) {
  if (block != nullptr) InterlockedIncrement(&alive_);
  return block;
}

void* BlockCount::PreFree(void* block, BOOL is_ours) {
  if (block != nullptr && is_ours != FALSE) InterlockedDecrement(&alive_);
  return block;
}

SIZE_T BlockCount::PreRealloc(void* block, SIZE_T size, void** place, BOOL) {
  // Two ways of taking and giving back.
  if (block == nullptr) InterlockedIncrement(&alive_);
  if (block != nullptr && size == 0) InterlockedDecrement(&alive_);
  *place = block;
  return size;
}

std::size_t HeapBlocks() {
  std::array<HANDLE, 64> heaps{};
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  std::size_t blocks = 0;
  for (DWORD i = 0; i < count && i < heaps.size(); ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry) != FALSE) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) ++blocks;
    }
    HeapUnlock(heaps[i]);
  }
  return blocks;
}

}  // namespace kesp::variants
