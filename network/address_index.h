// Which addresses the instruments of a collection have, found in constant time.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

#include "network/instruments.h"

namespace kesp {

// Reads each item's address once and then follows what is appended to the collection; what is removed makes
// it read all of them again. An address that is changed within an item is noticed at the next Restart.
class AddressIndex {
 public:
  // For one collection, from one Restart to the next.
  bool Holds(const CInstruments& instruments, const std::wstring& address);

  void Restart();

 private:
  std::unordered_set<std::wstring> addresses_;
  std::int32_t indexed_ = 0;  // so many items, from the first on, are in the set
  std::uint32_t removals_ = 0;
};

}  // namespace kesp
