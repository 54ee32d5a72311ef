// The IEEE-488 branch of Query and Update.
#include "commobj/ieee_status.h"
#include "commobj/kesp_comm_obj.h"

namespace kesp {

bool CKespCommObj::RunOnIeee(const Exchange& exchange) {
  const Attempt attempt = Try([&] { return ExchangeOnIeee(exchange); });
  trace_.Write(L"IEEE: Uninitialize()");
  // The exchange is over by now: a device that cannot be closed does not change what it came to.
  Try([&] { return ieee_->Uninitialize(); });
  if (attempt.error) throw Failure(*attempt.error);
  return attempt.succeeded;
}

bool CKespCommObj::ExchangeOnIeee(const Exchange& exchange) {
  trace_.Write(L"IEEE: Initialize()");
  const Attempt initialize = Try([&] { return ieee_->Initialize(); });
  if (!initialize.succeeded) {
    return Fail(IeeeInitializeStatus(initialize.number()), L"IEEE: ** Initialize()", initialize);
  }
  trace_.Write([&] { return L"IEEE: " + exchange.ieee_write_operation + L"(" + exchange.cmd + L")"; });
  const Attempt write = Try([&] { return ieee_->WriteLine(exchange.cmd); });
  if (!write.succeeded) return Fail(ECommError::cfrWriteFailed, L"IEEE: ** WriteLine()", write);
  return exchange.read_ieee ? ReadFromIeee(exchange) : Succeed();
}

bool CKespCommObj::ReadFromIeee(const Exchange& exchange) {
  trace_.Write([&] { return L"IEEE: " + exchange.read_operation; });
  const Attempt read = Try(exchange.read_ieee);
  if (!read.succeeded) {
    return Fail(ECommError::cfrReadFailed, L"IEEE: ** " + exchange.read_operation, read);
  }
  if (exchange.reply_for_trace) trace_.Write([&] { return L"IEEE: result- " + exchange.reply_for_trace(); });
  return Succeed();
}

}  // namespace kesp
