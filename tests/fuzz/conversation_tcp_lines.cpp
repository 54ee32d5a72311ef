// The client of a conversation with the network transport: commands and replies, and what must come of them.
#include <utility>

#include "support/error_numbers.h"
#include "support/text.h"
#include "tests/fuzz/conversation_replies.h"
#include "tests/fuzz/conversation_tcp.h"

namespace kesp {

using namespace tcp_error;

void TcpConversation::WriteLine() {
  const std::wstring cmd = WideText(input_.Bytes(input_.Byte() % 8U));
  const EKespTCPState state = socket_->PresentState();
  const Known connected = connected_;
  command_ = SystemCodePage().ToBytes(cmd) + '\r';
  Call call;
  const Attempt attempt = Do(Member::kWriteLine, 0, call, [&] { return tcp_->WriteLine(cmd); });
  if (connected_ == Known::kUnknown && !call.interfered && attempt.number() != ERR_NOT_INITIALIZED) {
    connected_ = Known::kYes;
  }
  if (attempt.number() == ERR_NOT_INITIALIZED) {
    Require(connected != Known::kYes, "WriteLine is refused where nothing is connected");
    connected_ = Known::kNo;
    return;
  }
  Require(connected != Known::kNo, "WriteLine needs Initialize");
  if (attempt.number() == ERR_NO_CONNECTION) {
    Require(state != EKespTCPState::sckConnected && call.pumpings == 0, "WriteLine needs a connection");
    return;
  }
  Require(state == EKespTCPState::sckConnected, "WriteLine writes to a connection");
  Require(call.sendings == 1, "WriteLine sends once");
  if (attempt.error) {
    Require(attempt.number() == ERR_SEND_DATA && call.socket_failed, "WriteLine fails as the socket does");
  } else {
    Require(attempt.succeeded && call.pumpings == 1, "WriteLine pumps once");
  }
}

void TcpConversation::ReadLine() {
  std::wstring result = L"before";
  const EKespTCPState state = socket_->PresentState();
  Call call;
  const Attempt attempt = Do(Member::kReadLine, 0, call, [&] { return tcp_->ReadLine(result); });
  if (IsRefused(attempt, call, state)) {
    Require(result == L"before", "a read that is refused leaves the result");
    return;
  }
  if (attempt.number() == com_port_error::ERR_INVALID_CHARACTERS) {
    Require(call.taken && call.check && HasInvalid(*call.taken), "only invalid characters are refused");
    Require(result == SystemCodePage().FromBytes(*call.taken), "the refused reply is in the result");
    return;
  }
  if (attempt.error) {
    Require(result == L"before", "a read that fails leaves the result");
    CheckReadFailure(attempt, call);
    return;
  }
  Require(attempt.succeeded, "ReadLine returns True");
  if (!call.taken) {
    Require(socket_->Protocol() == EKespProtocol::sckUDPProtocol || call.interfered, "a reply was taken");
    Require(result == L"before" && IsTimeOver(call), "the wait for datagrams leaves the result");
    return;
  }
  Require(!(call.check && HasInvalid(*call.taken)), "invalid characters are refused");
  const std::wstring text = SystemCodePage().FromBytes(*call.taken);
  Require(result == (call.strip ? StrippedReply(text) : text), "ReadLine returns what was pending");
}

void TcpConversation::ReadLineBinary() {
  BinaryValue result = std::wstring(L"before");
  const std::int32_t gap = input_.Byte() * 16 - 16;
  const EKespTCPState state = socket_->PresentState();
  const std::int64_t last_arrival_ms = std::exchange(last_arrival_ms_, world_.clock.now_ms());
  Call call;
  const Attempt attempt =
      Do(Member::kReadLineBinary, gap, call, [&] { return tcp_->ReadLineBinary(result, gap); });
  const bool is_refused = IsRefused(attempt, call, state);
  if (is_refused) last_arrival_ms_ = last_arrival_ms;
  if (is_refused || attempt.error) {
    Require(std::holds_alternative<std::wstring>(result), "a binary read that fails leaves the result");
    if (call.pumpings > 0) CheckReadFailure(attempt, call);
    return;
  }
  Require(attempt.succeeded && call.taken.has_value(), "ReadLineBinary took a reply");
  const auto* bytes = std::get_if<Bytes>(&result);
  Require(bytes != nullptr && std::string(bytes->begin(), bytes->end()) == *call.taken,
          "ReadLineBinary returns the bytes that were pending");
}

bool TcpConversation::IsRefused(const Attempt& attempt, const Call& call, EKespTCPState state) {
  if (call.pumpings > 0 || call.taken) {
    if (socket_->Protocol() == EKespProtocol::sckTCPProtocol && connected_ == Known::kUnknown &&
        !call.interfered) {
      connected_ = Known::kYes;
    }
    return false;
  }
  switch (attempt.number()) {
    case ERR_NOT_INITIALIZED:
      Require(connected_ != Known::kYes, "a read is refused where nothing is connected");
      connected_ = Known::kNo;
      return true;
    case ERR_NO_CONNECTION:
      Require(state != (socket_->Protocol() == EKespProtocol::sckUDPProtocol ? EKespTCPState::sckOpen
                                                                             : EKespTCPState::sckConnected),
              "a read is refused without a connection");
      return true;
    default:
      return false;
  }
}

void TcpConversation::CheckReadFailure(const Attempt& attempt, const Call& call) const {
  if (attempt.number() == ERR_TIMEOUT) {
    Require(IsTimeOver(call), "a time-out comes when the time is over");
    Require(!overran_, "an overrun is no time-out");
    return;
  }
  Require(attempt.number() == ERR_GET_DATA && overran_, "a read fails for a reason that is known");
}

}  // namespace kesp
