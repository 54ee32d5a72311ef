// Enumerators over a fixed list, for all the enumerator interfaces that the library hands out.
#pragma once

#include <atomic>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "server/com_headers.h"

namespace kesp {

// An enumerator with the interface Interface, whose elements are Element in the client's array and Item
// (which owns what it holds) in the list. Traits::Copy(const Item&, Element*) hands an element to the client.
// The list is a snapshot, so the collection may change meanwhile; clones share it.
template <class Interface, class Element, class Item, class Traits>
class ObjectEnumerator final : public Interface {
 public:
  using List = std::vector<Item>;

  explicit ObjectEnumerator(std::shared_ptr<const List> list, std::size_t next = 0)
      : list_(std::move(list)), next_(next) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = (iid == IID_IUnknown || iid == __uuidof(Interface)) ? this : nullptr;
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE Next(ULONG count, Element* elements, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (elements == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
    ULONG copied = 0;
    while (copied < count && next_ < list_->size()) {
      const HRESULT result = Traits::Copy((*list_)[next_], &elements[copied]);
      if (FAILED(result)) return result;
      ++next_;
      ++copied;
      if (fetched != nullptr) *fetched = copied;
    }
    return copied == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const std::size_t left = list_->size() - next_;
    next_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    next_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(Interface** clone) override {
    if (clone == nullptr) return E_POINTER;
    *clone = new (std::nothrow) ObjectEnumerator(list_, next_);
    return *clone != nullptr ? S_OK : E_OUTOFMEMORY;
  }

 private:
  ~ObjectEnumerator() = default;

  std::shared_ptr<const List> list_;
  std::size_t next_;
  std::atomic<ULONG> references_ = 1;
};

}  // namespace kesp
