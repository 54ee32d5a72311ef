// Calls of the library, early and late bound.
#include "bench/library_client.h"

#include "bench/calls.h"
#include "bench/text.h"

namespace kesp::bench {

LibraryClient::LibraryClient(const std::string& host, std::uint16_t port) : comm_(CreateCommObj()) {
  CheckResult(SelectTransport(comm_.Get(), ::csTCPIP).As(&tcp_), "the network transport");
  CheckResult(tcp_->put_IPAddress(Text(host).get()), "IPAddress");
  CheckResult(tcp_->put_Port(static_cast<SHORT>(port)), "Port");
  CheckResult(comm_->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type_info_), "GetTypeInfo");
  query_id_ = IdOf(comm_.Get(), L"Query");
  property_id_ = IdOf(comm_.Get(), L"BinaryTimeoutms");
}

std::size_t LibraryClient::Query(BSTR cmd) const {
  return bench::Query(comm_.Get(), cmd);
}

std::size_t LibraryClient::QueryLate(BSTR cmd) const {
  return ReadLate(comm_.Get(), query_id_, cmd);
}

void LibraryClient::Open() const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(tcp_->Initialize(&succeeded), "Initialize");
}

void LibraryClient::Close() const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(tcp_->Uninitialize(&succeeded), "Uninitialize");
}

std::size_t LibraryClient::Exchange(BSTR cmd) const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(tcp_->WriteLine(cmd, &succeeded), "WriteLine");
  BSTR result = nullptr;
  CheckResult(tcp_->ReadLine(&result, &succeeded), "ReadLine");
  return LengthOf(result);
}

void LibraryClient::GetPropertyLate() const {
  DISPPARAMS parameters{nullptr, nullptr, 0, 0};
  VARIANT value;
  VariantInit(&value);
  CheckResult(comm_->Invoke(property_id_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &parameters,
                            &value, nullptr, nullptr),
              "BinaryTimeoutms (late)");
}

void LibraryClient::GetPropertyBare() const {
  DISPPARAMS parameters{nullptr, nullptr, 0, 0};
  VARIANT value;
  VariantInit(&value);
  CheckResult(DispInvoke(comm_.Get(), type_info_.Get(), property_id_, DISPATCH_PROPERTYGET, &parameters,
                         &value, nullptr, nullptr),
              "BinaryTimeoutms (DispInvoke)");
}

void CreateAndRelease() {
  CreateCommObj();
}

}  // namespace kesp::bench
