// Telling of blocks.
#include "tests/clients/com_block_spy.h"

#include <utility>

namespace kesp::clients {

ComBlockSpy::ComBlockSpy(Action taken, Action given_back)
    : taken_(std::move(taken)), given_back_(std::move(given_back)) {
  // Without the cache of texts, which would hide those that are not freed.
  using SetOaNoCacheFunction = void(WINAPI*)();
  const FARPROC found = GetProcAddress(LoadLibraryW(L"oleaut32.dll"), "SetOaNoCache");
  if (found != nullptr) reinterpret_cast<SetOaNoCacheFunction>(reinterpret_cast<void*>(found))();
  CoRegisterMallocSpy(this);
}

ComBlockSpy::~ComBlockSpy() {
  CoRevokeMallocSpy();
}

HRESULT ComBlockSpy::QueryInterface(REFIID iid, void** object) {
  const bool is_known = iid == IID_IUnknown || iid == IID_IMallocSpy;
  *object = is_known ? this : nullptr;
  return is_known ? S_OK : E_NOINTERFACE;
}

void* ComBlockSpy::Taken(void* block) {
  if (block == nullptr) return nullptr;
  taken_(block);
  return block;
}

void* ComBlockSpy::PreFree(void* block, BOOL is_ours) {
  if (block == nullptr || is_ours == FALSE) return block;
  given_back_(block);
  return block;
}

// Giving back and taking.
SIZE_T ComBlockSpy::PreRealloc(void* block, SIZE_T size, void** place, BOOL is_ours) {
  *place = PreFree(block, is_ours);
  return size;
}

void* ComBlockSpy::PostRealloc(void* block, BOOL is_ours) {
  return is_ours == FALSE ? block : Taken(block);
}

}  // namespace kesp::clients
