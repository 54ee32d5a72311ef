// Addresses on the bus.
#pragma once

#include <cstdint>

namespace kesp::simulator::gpib {

// A primary address and, as ibdev takes it, a secondary one: 0 for none, 1 to 30, or 96 to 126 for 0 to 30.
struct Address {
  std::int32_t primary = 0;
  std::int32_t secondary = 0;

  bool IsValid() const {
    return primary >= 0 && primary <= 30 && (secondary == 0 || IsWithoutOffset() || HasOffset());
  }
  // Whether a driver that insists on 96 to 126 would refuse the secondary address.
  bool IsWithoutOffset() const { return secondary >= 1 && secondary <= 30; }
  bool HasOffset() const { return secondary >= 96 && secondary <= 126; }

  // 5 and 101 are the same secondary address; 0 and 96 are not, for 96 is the secondary address zero.
  friend bool operator==(const Address& left, const Address& right) {
    return left.primary == right.primary && left.WithOffset() == right.WithOffset();
  }

 private:
  std::int32_t WithOffset() const { return IsWithoutOffset() ? secondary + 96 : secondary; }
};

}  // namespace kesp::simulator::gpib
