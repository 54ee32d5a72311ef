// Memory for the runtime that is linked in, which ends the process when it has none.
//
// The compiler's runtime and the thread library keep data for each thread, made at the thread's first
// exception and at the first use of a lock, and call abort() when there is no memory for them. A host must
// not end for that. So what they ask for comes from a reserve in the image when the heap has no more. The
// linker sends all calls of these functions here (kesp_runtime_memory in cmake/KespOptions.cmake). Our own
// code asks through operator new, which goes to the heap alone, and throws.

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
}

namespace {

// A slot holds any of the runtime's blocks. A thread takes about five, so there are enough for a dozen
// threads that begin while there is no memory. For more of them the runtime ends the process.
constexpr std::size_t kSlotSize = 1024;
constexpr std::size_t kSlots = 64;

struct alignas(16) Slot {
  std::byte bytes[kSlotSize];
};

// Zero before anything runs, so they may be used at any time.
constinit Slot slots[kSlots];
constinit std::atomic<bool> is_taken[kSlots];

// Zeroed; null when it does not fit or nothing is left.
void* TakeSlot(std::size_t size) {
  if (size > kSlotSize) return nullptr;
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (is_taken[i].exchange(true)) continue;
    std::memset(&slots[i], 0, sizeof(Slot));
    return &slots[i];
  }
  return nullptr;
}

bool IsSlot(const void* block) {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const auto first = reinterpret_cast<std::uintptr_t>(slots);
  return address >= first && address < first + sizeof slots;
}

void GiveBack(void* block) {
  is_taken[static_cast<std::size_t>(static_cast<Slot*>(block) - slots)] = false;
}

}  // namespace

extern "C" {

void* __wrap_malloc(std::size_t size) {
  void* const block = __real_malloc(size);
  return block != nullptr ? block : TakeSlot(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  void* const block = __real_calloc(count, size);
  if (block != nullptr || (size != 0 && count > kSlotSize / size)) return block;
  return TakeSlot(count * size);
}

void __wrap_free(void* block) {
  if (IsSlot(block)) {
    GiveBack(block);
  } else {
    __real_free(block);
  }
}

void* __wrap_realloc(void* block, std::size_t size) {
  const bool is_slot = IsSlot(block);
  if (!is_slot) {
    void* const grown = __real_realloc(block, size);
    if (grown != nullptr || size == 0) return grown;
  }
  if (is_slot && size <= kSlotSize) return block;
  void* const other = is_slot ? __real_malloc(size) : TakeSlot(size);
  if (other == nullptr || block == nullptr) return other;
  std::memcpy(other, block, std::min(size, is_slot ? kSlotSize : _msize(block)));
  __wrap_free(block);
  return other;
}

}  // extern "C"

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return __real_malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size) {
  void* const block = operator new(size, std::nothrow);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  __real_free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  __real_free(block);
}
