// The set of addresses that follows a collection.
#include "network/address_index.h"

#include <memory>

namespace kesp {

bool AddressIndex::Holds(const CInstruments& instruments, const std::wstring& address) {
  if (removals_ != instruments.Removals()) {
    Restart();
    removals_ = instruments.Removals();
  }
  while (indexed_ < instruments.Count()) {
    // An item of a client may do anything when it is asked, removing itself included.
    const std::shared_ptr<Instrument> item = instruments.Item(++indexed_);
    addresses_.insert(item->IPAddress());
  }
  return addresses_.contains(address);
}

void AddressIndex::Restart() {
  addresses_.clear();
  indexed_ = 0;
}

}  // namespace kesp
