// The settings of the transport in use: an address and a timeout written into its properties, and read back.
#pragma once

#include <memory>

#include "KespCommObj.h"
#include "console/address.h"
#include "console/com_calls_win.h"

namespace kesp::console {

class TransportSettings {
 public:
  virtual ~TransportSettings() = default;
  virtual Address Read() = 0;
  virtual void SetTimeout(int milliseconds) = 0;
  // What the next reply is.
  enum class Reply { kText, kBytes };
  virtual void Expect(Reply) {}
  // Whether a character ends a reply of bytes.
  virtual bool EndsBytes() const { return false; }
  // Leaves the line ends in replies.
  virtual void LeaveLineEnds() = 0;
};

// Each chooses the transport that the address needs, and writes the address into it.
std::unique_ptr<TransportSettings> ApplyTcp(_CKespCommObj* comm, const TcpAddress& address);
std::unique_ptr<TransportSettings> ApplyCom(_CKespCommObj* comm, const ComAddress& address);
std::unique_ptr<TransportSettings> ApplyGpib(_CKespCommObj* comm, const GpibAddress& address);

// The transport of that style, which is the one in use from now on.
template <class Transport>
ComPtr<Transport> Use(_CKespCommObj* comm, ECommStyle style) {
  Write(comm, &_CKespCommObj::put_CommStyle, style);
  ComPtr<IDispatch> object;
  Check(comm->get_CommObject(&object));
  ComPtr<Transport> transport;
  Check(object.As(&transport));
  return transport;
}

}  // namespace kesp::console
