// Where the simulated instrument listens, and places where nobody does.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "tests/clients/automation.h"

namespace kesp::clients {

std::wstring InstrumentHost();
short InstrumentPort();

// A loopback port, below 32768, that refuses connections for as long as this lives.
class RefusingPort {
 public:
  RefusingPort();
  ~RefusingPort();
  RefusingPort(const RefusingPort&) = delete;
  RefusingPort& operator=(const RefusingPort&) = delete;

  short number() const { return number_; }

 private:
  UINT_PTR socket_;
  short number_ = 0;
};

// Points a transport at the instrument.
void SetTarget(_CKespTCP* tcp);

// The network transport of a communication object, which is made to use it and pointed at the instrument.
ComPtr<_CKespTCP> UseInstrument(_CKespCommObj* comm);

}  // namespace kesp::clients
