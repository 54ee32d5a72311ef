// The library's IEEE-488 transport as its clients see it.
#pragma once

#include <KespCommObj.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstddef>

namespace kesp::bench {

// A communication object that is set to csIEEE and a device; EOSChar is "10", and SetEOS is left on. Throws
// std::runtime_error for a failed call.
class BusClient {
 public:
  explicit BusClient(int primary_address);

  // The device that stays open, for the exchanges.
  void Open() const;
  void Close() const;

  // WriteLine and ReadLine, early and late bound; return the length of the reply.
  std::size_t Exchange(BSTR cmd) const;
  std::size_t ExchangeLate(BSTR cmd) const;

  // Return the length of the reply.
  std::size_t Query(BSTR cmd) const;
  std::size_t QueryLate(BSTR cmd) const;

  // AutoDetect over all addresses, with all commands; returns whether something was found.
  bool AutoDetect() const;

 private:
  Microsoft::WRL::ComPtr<::_CKespCommObj> comm_;
  Microsoft::WRL::ComPtr<::_CKespIEEE> ieee_;
  DISPID query_id_ = 0;
  DISPID write_line_id_ = 0;
  DISPID read_line_id_ = 0;
};

}  // namespace kesp::bench
