// Query, QueryBinary and Update: what is common to all transports.
#include "commobj/kesp_comm_obj.h"
#include "support/error_numbers.h"
#include "support/error_trap.h"
#include "support/failure.h"
#include "support/text.h"

namespace kesp {

namespace {

constexpr wchar_t kQueryBinarySource[] = L"[CKespCommObj - QueryBinary()]";

// What a binary value holds, as text for the trace.
std::wstring TextIn(const BinaryValue& value) {
  if (const auto* text = std::get_if<std::wstring>(&value)) return *text;
  if (const auto* bytes = std::get_if<Bytes>(&value)) {
    return SystemCodePage().FromBytes(std::string(bytes->begin(), bytes->end()));
  }
  return {};
}

}  // namespace

// Memory may run out while the exchange is being described, too.
template <typename Describe>
bool CKespCommObj::Run(const wchar_t* source, const wchar_t* trap_action, const Describe& describe) {
  RequireTransport(source);
  BeginOperation();
  return RunTrapped(environment_.user, trap_action, [&] {
    const Exchange exchange = describe();
    if (!exchange.beginning_line.empty()) trace_.Write([&] { return exchange.beginning_line; });
    const bool succeeded = RunOnTransport(exchange);
    if (!exchange.exiting_line.empty()) trace_.Write([&] { return exchange.exiting_line; });
    return succeeded;
  });
}

bool CKespCommObj::Query(std::wstring& result, const std::wstring& cmd, const std::wstring& OmegaAddress,
                         const std::wstring& OmegaValue) {
  return Run(L"[CKespCommObj - Query()]", L"attempting to perform query", [&] {
    return Exchange{.member = L"Query",
                    .beginning_line = L"Beginning Query()... (command: " + cmd + L")",
                    .exiting_line = L"Exiting Query()...(command: " + cmd + L")",
                    .cmd = cmd,
                    .OmegaAddress = OmegaAddress,
                    .OmegaValue = OmegaValue,
                    .serial_opening = SerialOpening::kRetried,
                    .read_operation = L"ReadLine()",
                    .read_serial = [&] { return serial_->ReadLine(result); },
                    .read_network = [&] { return network_->ReadLine(result); },
                    .read_ieee = [&] { return ieee_->ReadLine(result); },
                    .reply_for_trace = [&] { return result; },
                    .partial_reply_for_trace = {}};
  });
}

bool CKespCommObj::QueryBinary(BinaryValue& result, const std::wstring& cmd, const std::wstring& OmegaAddress,
                               const std::wstring& OmegaValue) {
  // Raised, not trapped as what fails in an operation is.
  if (comm_style_ == ECommStyle::csIEEE) {
    BeginOperation();
    throw StyleNotSupported(kQueryBinarySource);
  }
  return Run(kQueryBinarySource, L"attempting to perform query", [&] {
    return Exchange{.member = L"QueryBinary",
                    .beginning_line = {},
                    .exiting_line = {},
                    .cmd = cmd,
                    .OmegaAddress = OmegaAddress,
                    .OmegaValue = OmegaValue,
                    .serial_opening = SerialOpening::kOnce,
                    .read_operation = L"ReadLineBinary()",
                    .read_serial = [&] { return serial_->ReadLineBinary(result, binary_timeout_ms_); },
                    .read_network = [&] { return network_->ReadLineBinary(result, binary_timeout_ms_); },
                    .read_ieee = {},
                    .reply_for_trace = {},
                    .partial_reply_for_trace = [&] { return TextIn(result); }};
  });
}

bool CKespCommObj::Update(const std::wstring& cmd, const std::wstring& OmegaAddress,
                          const std::wstring& OmegaValue) {
  return Run(L"[CKespCommObj - Update()]", L"attempting to perform update", [&] {
    return Exchange{.member = L"Update",
                    .beginning_line = L"Beginning Update()...(command: " + cmd + L")",
                    .exiting_line = L"Exiting Update()...(command: " + cmd + L")",
                    .cmd = cmd,
                    .OmegaAddress = OmegaAddress,
                    .OmegaValue = OmegaValue,
                    .serial_opening = SerialOpening::kRetriedQuietly,
                    .initialize_trace = InitializeTrace::kWithFailedLine,
                    .ieee_write_operation = L"Writeline",
                    .read_operation = {},
                    .read_serial = {},
                    .read_network = {},
                    .read_ieee = {},
                    .reply_for_trace = {},
                    .partial_reply_for_trace = {}};
  });
}

bool CKespCommObj::RunOnTransport(const Exchange& exchange) {
  switch (comm_style_) {
    case ECommStyle::csRS232:
      return RunOnSerial(exchange);
    case ECommStyle::csTCPIP:
      return RunOnNetwork(exchange);
    default:
      return RunOnIeee(exchange);
  }
}

void CKespCommObj::BeginOperation() {
  comm_error_ = ECommError::cfrOtherError;
  comm_error_source_.clear();
  comm_error_descr_.clear();
}

bool CKespCommObj::Succeed() {
  comm_error_ = ECommError::cfrSuccess;
  comm_error_source_.clear();
  comm_error_descr_.clear();
  return true;
}

bool CKespCommObj::Fail(ECommError status, const std::wstring& operation, const Attempt& attempt) {
  comm_error_ = status;
  comm_error_source_ = attempt.source();
  comm_error_descr_ = attempt.description();
  TraceErrorInfo(operation.c_str(), attempt);
  return false;
}

void CKespCommObj::TraceErrorInfo(const wchar_t* operation, const Attempt& attempt) noexcept {
  trace_.Write([&] {
    return operation + (L" Error info: Source- " + attempt.source()) + L"  Description- " +
           attempt.description() + L" **";
  });
}

}  // namespace kesp
