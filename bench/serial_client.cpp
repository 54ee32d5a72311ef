// Calls of the serial transport, early bound.
#include "bench/serial_client.h"

#include "bench/calls.h"
#include "bench/text.h"

namespace kesp::bench {

namespace {

// The silence that ends a long transfer; short, because it is part of what is measured.
constexpr long kTimeOutMs = 1000;
constexpr long kBinarySilenceMs = 100;

}  // namespace

SerialClient::SerialClient(int port) : comm_(CreateCommObj()) {
  CheckResult(SelectTransport(comm_.Get(), ::csRS232).As(&port_), "the serial transport");
  CheckResult(port_->put_Port(static_cast<SHORT>(port)), "Port");
  CheckResult(port_->put_BaudRate(::br9600), "BaudRate");
  CheckResult(port_->put_UseRedirector(VARIANT_TRUE), "UseRedirector");
  CheckResult(port_->put_TimeOut(kTimeOutMs), "TimeOut");
  CheckResult(port_->SetInputMode(::imBinary), "SetInputMode");
}

void SerialClient::SetAutoClose(bool on) const {
  CheckResult(comm_->put_AutoClose(on ? VARIANT_TRUE : VARIANT_FALSE), "AutoClose");
}

void SerialClient::Open() const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(port_->OpenPort(&succeeded), "OpenPort");
}

void SerialClient::Close() const {
  // By way of the style, which also lets go of a port that Query left open.
  ::ECommStyle style = ::csRS232;
  CheckResult(comm_->put_CommStyle(&style), "CommStyle");
  CheckResult(port_->ClosePort(), "ClosePort");
}

std::size_t SerialClient::Query(BSTR cmd) const {
  return bench::Query(comm_.Get(), cmd);
}

std::size_t SerialClient::Exchange(BSTR cmd) const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(port_->WriteLine(cmd, nullptr, nullptr, VARIANT_FALSE, &succeeded), "WriteLine");
  BSTR result = nullptr;
  CheckResult(port_->ReadLine(&result, &succeeded), "ReadLine");
  return LengthOf(result);
}

std::size_t SerialClient::ExchangeBinary(BSTR cmd) const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(port_->WriteLine(cmd, nullptr, nullptr, VARIANT_FALSE, &succeeded), "WriteLine");
  VARIANT result;
  VariantInit(&result);
  CheckResult(port_->ReadLineBinary(&result, kBinarySilenceMs, &succeeded), "ReadLineBinary");
  LONG last = -1;
  CheckResult(SafeArrayGetUBound(V_ARRAY(&result), 1, &last), "SafeArrayGetUBound");
  VariantClear(&result);
  return static_cast<std::size_t>(last) + 1;
}

std::size_t SerialClient::Download(BSTR cmd) const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(port_->WriteLine(cmd, nullptr, nullptr, VARIANT_FALSE, &succeeded), "WriteLine");
  BSTR result = nullptr;
  CheckResult(port_->Download(&result, &succeeded), "Download");
  return LengthOf(result);
}

bool SerialClient::Edit() const {
  const auto everything = static_cast<::EEditCommFlags>(
      ::ecfShowRS232ExtendedTab | ::ecfShowRS232SmartSwitchTab | ::ecfShowRS232IRDongle);
  const Text no_help_file("");
  VARIANT_BOOL confirmed = VARIANT_FALSE;
  CheckResult(port_->Edit(everything, no_help_file.get(), 0, &confirmed), "Edit");
  return confirmed != VARIANT_FALSE;
}

}  // namespace kesp::bench
