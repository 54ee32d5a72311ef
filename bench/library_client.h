// The library as its clients see it: registered classes, vtable and dispatch.
#pragma once

#include <KespCommObj.h>
#include <winsock2.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>

namespace kesp::bench {

// A communication object that is set to the instrument, and its network transport. Throws std::runtime_error
// for a failed call.
class LibraryClient {
 public:
  LibraryClient(const std::string& host, std::uint16_t port);

  // Query through the vtable; returns the length of the reply.
  std::size_t Query(BSTR cmd) const;

  // Query through IDispatch, as a script does it: the reply in a VARIANT variable.
  std::size_t QueryLate(BSTR cmd) const;

  void Open() const;
  void Close() const;

  // WriteLine and ReadLine on the open connection; returns the length of the reply.
  std::size_t Exchange(BSTR cmd) const;

  // A property through the object's own Invoke, and through the automation library's DispInvoke.
  void GetPropertyLate() const;
  void GetPropertyBare() const;

 private:
  Microsoft::WRL::ComPtr<::_CKespCommObj> comm_;
  Microsoft::WRL::ComPtr<::_CKespTCP> tcp_;
  Microsoft::WRL::ComPtr<ITypeInfo> type_info_;
  DISPID query_id_ = 0;
  DISPID property_id_ = 0;
};

// Creates a communication object and releases it.
void CreateAndRelease();

}  // namespace kesp::bench
