// Calls of the library, early and late bound.
#include "bench/library_client.h"

#include <stdexcept>

namespace kesp::bench {

using Microsoft::WRL::ComPtr;

namespace {

ComPtr<::_CKespCommObj> Create() {
  ComPtr<::_CKespCommObj> comm;
  CheckResult(CoCreateInstance(__uuidof(::CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&comm)),
              "CoCreateInstance");
  return comm;
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
  DISPID id = 0;
  auto* text = const_cast<wchar_t*>(name);
  CheckResult(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id), "GetIDsOfNames");
  return id;
}

}  // namespace

void CheckResult(HRESULT result, const char* what) {
  if (SUCCEEDED(result)) return;
  throw std::runtime_error(std::string(what) + " failed: " + std::to_string(result));
}

LibraryClient::LibraryClient(const std::string& host, std::uint16_t port) : comm_(Create()) {
  ::ECommStyle style = ::csTCPIP;
  CheckResult(comm_->put_CommStyle(&style), "CommStyle");
  ComPtr<IDispatch> transport;
  CheckResult(comm_->get_CommObject(&transport), "CommObject");
  CheckResult(transport.As(&tcp_), "the network transport");
  BSTR address = SysAllocString(std::wstring(host.begin(), host.end()).c_str());
  CheckResult(tcp_->put_IPAddress(address), "IPAddress");
  SysFreeString(address);
  CheckResult(tcp_->put_Port(static_cast<SHORT>(port)), "Port");
  CheckResult(comm_->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type_info_), "GetTypeInfo");
  query_id_ = IdOf(comm_.Get(), L"Query");
  property_id_ = IdOf(comm_.Get(), L"BinaryTimeoutms");
}

std::size_t LibraryClient::Query(BSTR cmd) const {
  BSTR result = nullptr;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(comm_->Query(&result, cmd, nullptr, nullptr, &succeeded), "Query");
  if (succeeded == VARIANT_FALSE) throw std::runtime_error("Query had no reply");
  const std::size_t length = SysStringLen(result);
  SysFreeString(result);
  return length;
}

std::size_t LibraryClient::QueryLate(BSTR cmd) const {
  VARIANT variable;
  VariantInit(&variable);
  VARIANTARG arguments[2];
  V_VT(&arguments[0]) = VT_BSTR;
  V_BSTR(&arguments[0]) = cmd;
  V_VT(&arguments[1]) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&arguments[1]) = &variable;
  DISPPARAMS parameters{arguments, nullptr, 2, 0};
  VARIANT succeeded;
  VariantInit(&succeeded);
  CheckResult(comm_->Invoke(query_id_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                            &succeeded, nullptr, nullptr),
              "Query (late)");
  if (V_BOOL(&succeeded) == VARIANT_FALSE) throw std::runtime_error("Query (late) had no reply");
  const std::size_t length = SysStringLen(V_BSTR(&variable));
  VariantClear(&variable);
  return length;
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
  const std::size_t length = SysStringLen(result);
  SysFreeString(result);
  return length;
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
  Create();
}

}  // namespace kesp::bench
