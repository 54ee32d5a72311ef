// The library's serial transport as its clients see it.
#pragma once

#include <KespCommObj.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstddef>

namespace kesp::bench {

// A communication object that is set to csRS232 and the port, 9600 baud, replies that end with a carriage
// return. Throws std::runtime_error for a failed call.
class SerialClient {
 public:
  explicit SerialClient(int port);

  // Whether Query closes the port.
  void SetAutoClose(bool on) const;

  // The port that stays open, for Exchange.
  void Open() const;
  void Close() const;

  // All of them return the length of the reply.
  std::size_t Query(BSTR cmd) const;
  std::size_t Exchange(BSTR cmd) const;
  std::size_t ExchangeBinary(BSTR cmd) const;
  std::size_t Download(BSTR cmd) const;

  // Shows the settings dialog with all its pages; whether the user confirmed.
  bool Edit() const;

 private:
  Microsoft::WRL::ComPtr<::_CKespCommObj> comm_;
  Microsoft::WRL::ComPtr<::_CKespCOMPort3> port_;
};

}  // namespace kesp::bench
