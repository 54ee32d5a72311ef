// The collection of instruments found on the network.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "network/instrument.h"

namespace kesp {

// An ordered collection whose items may have keys. Positions count from 1. Keys are unique and compared
// without regard to the case of the letters of ASCII and Latin-1.
class CInstruments {
 public:
  // A position or a key.
  using IndexOrKey = std::variant<std::int32_t, std::wstring>;

  // Appends the item, under the key when it is not empty. Throws InvalidCall() for a null item and
  // KeyAlreadyInUse() for a key that another item has; the collection is unchanged then.
  void AddReference(std::shared_ptr<Instrument> item, const std::wstring& key = {});

  // Removes one item; those behind it move up. Throws OutOfRange() for a position outside 1 to Count(),
  // InvalidCall() for a key that no item has.
  void Remove(const IndexOrKey& index_or_key);

  void Clear();

  // The item. Throws as Remove does.
  const std::shared_ptr<Instrument>& Item(const IndexOrKey& index_or_key) const;

  std::int32_t Count() const;

  // All items, in their order.
  std::vector<std::shared_ptr<Instrument>> Items() const;
  bool Contains(const Instrument& item) const;

  // How often items were removed, by Remove or Clear: while this stays the same, items are only appended.
  std::uint32_t Removals() const { return removals_; }

 private:
  struct Entry {
    std::shared_ptr<Instrument> item;
    std::wstring key;  // as given; empty when the item has none
  };

  std::vector<Entry>::const_iterator FindKey(const std::wstring& key) const;
  std::size_t PositionOf(const IndexOrKey& index_or_key) const;

  std::vector<Entry> entries_;
  std::uint32_t removals_ = 0;
};

}  // namespace kesp
