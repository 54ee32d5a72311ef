// The record that counts how often it is asked for its address.
#include "network/counting_instrument_fake.h"

namespace kesp {

CountingInstrument::CountingInstrument(int& asked) : asked_(asked) {}

CountingInstrument::~CountingInstrument() = default;

std::wstring CountingInstrument::IPAddress() const {
  ++asked_;
  return address_;
}

}  // namespace kesp
