// The network branch of Query, QueryBinary and Update.
#include "commobj/kesp_comm_obj.h"
#include "support/error_numbers.h"

namespace kesp {

namespace {

ECommError InitializeStatus(std::int32_t number) {
  switch (number) {
    case tcp_error::ERR_INVALID_IP_ADDRESS:
      return ECommError::cfrInvalidIPAddress;
    case tcp_error::ERR_INVALID_PORT:
      return ECommError::cfrInvalidPort;
    default:
      return ECommError::cfrInitializeFailed;
  }
}

ECommError WriteStatus(std::int32_t number) {
  switch (number) {
    case tcp_error::ERR_NOT_INITIALIZED:
      return ECommError::cfrInitializeFailed;
    case tcp_error::ERR_NO_CONNECTION:
      return ECommError::cfrNoConnection;
    default:
      return ECommError::cfrWriteFailed;
  }
}

ECommError ReadStatus(std::int32_t number) {
  switch (number) {
    case tcp_error::ERR_NOT_INITIALIZED:
      return ECommError::cfrInitializeFailed;
    case tcp_error::ERR_TIMEOUT:
      return ECommError::cfrTimeout;
    case tcp_error::ERR_NO_CONNECTION:
      return ECommError::cfrNoConnection;
    case tcp_error::ERR_TCP_INVALID_CHARACTERS:
      return ECommError::cfrInvalidData;
    default:
      return ECommError::cfrReadFailed;
  }
}

}  // namespace

bool CKespCommObj::RunOnNetwork(const Exchange& exchange) {
  const Attempt attempt = Try([&] { return ExchangeOnNetwork(exchange); });
  trace_.Write(L"TCP: Uninitialize()");
  // The exchange is over by now: a connection that cannot be closed does not change what it came to.
  Try([&] { return network_->Uninitialize(); });
  if (attempt.error) throw Failure(*attempt.error);
  return attempt.succeeded;
}

bool CKespCommObj::ExchangeOnNetwork(const Exchange& exchange) {
  trace_.Write(L"TCP: Initialize()");
  const Attempt initialize = Try([&] { return network_->Initialize(); });
  if (!initialize.succeeded) {
    if (exchange.initialize_trace == InitializeTrace::kWithFailedLine) {
      trace_.Write([&] {
        return L"TCP: Initialize failed!! (" + std::to_wstring(initialize.number()) + L"-" +
               initialize.description() + L")";
      });
    }
    return Fail(InitializeStatus(initialize.number()), L"TCP: ** Initialize()", initialize);
  }
  trace_.Write([&] { return L"TCP: WriteLine(" + exchange.cmd + L")"; });
  const Attempt write = Try([&] { return network_->WriteLine(exchange.cmd); });
  if (!write.succeeded) return Fail(WriteStatus(write.number()), L"TCP: ** WriteLine()", write);
  return exchange.read_network ? ReadFromNetwork(exchange) : Succeed();
}

bool CKespCommObj::ReadFromNetwork(const Exchange& exchange) {
  trace_.Write([&] { return L"TCP: " + exchange.read_operation; });
  const Attempt read = Try(exchange.read_network);
  if (read.succeeded) {
    if (exchange.reply_for_trace) trace_.Write([&] { return L"TCP: result- " + exchange.reply_for_trace(); });
    return Succeed();
  }
  const std::wstring operation = L"TCP: ** " + exchange.read_operation;
  if (read.number() == tcp_error::ERR_TCP_INVALID_CHARACTERS)
    trace_.Write([&] { return operation + L" invalid characters **"; });
  return Fail(ReadStatus(read.number()), operation, read);
}

}  // namespace kesp
