// Calls of the IEEE-488 transport, early and late bound.
#include "bench/bus_client.h"

#include "bench/calls.h"
#include "bench/text.h"

namespace kesp::bench {

BusClient::BusClient(int primary_address) : comm_(CreateCommObj()) {
  CheckResult(SelectTransport(comm_.Get(), ::csIEEE).As(&ieee_), "the IEEE-488 transport");
  CheckResult(ieee_->put_PrimaryAddress(static_cast<SHORT>(primary_address)), "PrimaryAddress");
  CheckResult(ieee_->put_EOSChar(Text("10").get()), "EOSChar");
  CheckResult(ieee_->put_TimeOutSecs(::to1s), "TimeOutSecs");
  query_id_ = IdOf(comm_.Get(), L"Query");
  write_line_id_ = IdOf(ieee_.Get(), L"WriteLine");
  read_line_id_ = IdOf(ieee_.Get(), L"ReadLine");
}

void BusClient::Open() const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(ieee_->Initialize(&succeeded), "Initialize");
}

void BusClient::Close() const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(ieee_->Uninitialize(&succeeded), "Uninitialize");
}

std::size_t BusClient::Exchange(BSTR cmd) const {
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  CheckResult(ieee_->WriteLine(cmd, &succeeded), "WriteLine");
  BSTR result = nullptr;
  CheckResult(ieee_->ReadLine(&result, &succeeded), "ReadLine");
  return LengthOf(result);
}

std::size_t BusClient::ExchangeLate(BSTR cmd) const {
  WriteLate(ieee_.Get(), write_line_id_, cmd);
  return ReadLate(ieee_.Get(), read_line_id_, nullptr);
}

std::size_t BusClient::Query(BSTR cmd) const {
  return bench::Query(comm_.Get(), cmd);
}

std::size_t BusClient::QueryLate(BSTR cmd) const {
  return ReadLate(comm_.Get(), query_id_, cmd);
}

bool BusClient::AutoDetect() const {
  BSTR result = nullptr;
  VARIANT_BOOL found = VARIANT_FALSE;
  CheckResult(ieee_->AutoDetect(&result, ::dlAllCommands, ::soFindFirst, &found), "AutoDetect");
  SysFreeString(result);
  return found != VARIANT_FALSE;
}

}  // namespace kesp::bench
