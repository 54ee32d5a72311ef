// The model of the network transport: when a reply is complete, when a wait is over, how events follow one
// another.
#include <algorithm>
#include <cstring>

#include "support/text.h"
#include "tests/fuzz/conversation_replies.h"
#include "tests/fuzz/conversation_tcp.h"

namespace kesp {

Attempt TcpConversation::Do(Member member, std::int32_t gap_ms, Call& call,
                            const std::function<bool()>& operation) {
  world_.clock.EndIdling();
  call.member = member;
  call.gap_ms = gap_ms;
  call.start_second = world_.clock.Second();
  calls_.push_back(&call);
  Attempt attempt = Try(operation);
  calls_.pop_back();
  return attempt;
}

void TcpConversation::Pumping() {
  if (calls_.empty()) return;
  Call& call = *calls_.back();
  CheckWait(call);
  ++call.pumpings;
}

// A wait that goes on has a reason to.
void TcpConversation::CheckWait(const Call& call) const {
  const bool is_first = call.pumpings == 0;
  switch (call.member) {
    case Member::kReadLine:
    case Member::kReadLineBinary:
      Require(!ready_known_ || !IsReplyComplete(call), "a read returns when the reply is complete");
      Require(is_first || !overran_, "a read ends when the reply was dropped");
      Require(is_first || !IsTimeOver(call), "a read ends when its time is over");
      return;
    case Member::kInitialize:
      Require(is_first || socket_->PresentState() != EKespTCPState::sckConnected || connected_ != Known::kYes,
              "Initialize returns when the connection is there");
      Require(is_first || !IsTimeOver(call), "Initialize ends when its time is over");
      return;
    default:
      return;
  }
}

bool TcpConversation::IsTimeOver(const Call& call) const {
  return (world_.clock.Second() - call.start_second) * 1000 > tcp_->TimeOutmSecs();
}

bool TcpConversation::IsReplyComplete(const Call& call) const {
  if (!ready_) return false;
  if (call.member == Member::kReadLine || tcp_->TerminateOnEOS()) return true;
  return world_.clock.now_ms() - last_arrival_ms_ > call.gap_ms;
}

bool TcpConversation::IsDiscovering() const {
  return std::any_of(calls_.begin(), calls_.end(), [](const Call* call) { return call->discovers; });
}

// Whether what is pending now is a complete reply.
void TcpConversation::Judge() {
  // A discovery counts its answers without reading them, and so forgets what has come to a handler.
  const bool forgets = IsDiscovering();
  if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
    takes_datagram_ = socket_->Sender().has_value();
    if (socket_->PeekData().find('\xF7') != std::string_view::npos) ready_ = true;
    if (forgets) ready_known_ = false;
    return;
  }
  ready_known_ = !forgets;
  if (!tcp_->TerminateOnEOS()) {
    ready_ = !socket_->pending().empty();
    last_arrival_ms_ = world_.clock.now_ms();
    return;
  }
  const std::optional<std::string> eos = SystemCodePage().ToExactBytes(eos_);
  ready_ = eos && !eos->empty() && socket_->pending().find(*eos) != std::string::npos;
}

void TcpConversation::Connecting() {
  if (calls_.empty()) return;
  Call& call = *calls_.back();
  world_.clock.EndIdling();
  ++call.connects;
  call.pumpings = 0;
  call.start_second = world_.clock.Second();
}

void TcpConversation::Connected() {
  if (!listens_) connected_ = Known::kYes;
}

void TcpConversation::Failing() {
  if (!calls_.empty()) calls_.back()->socket_failed = true;
}

void TcpConversation::Closing(bool failed) {
  if (!calls_.empty()) {
    Call& call = *calls_.back();
    ++call.closings;
    call.closing_failed = call.closing_failed || failed;
    if (call.member == Member::kInitialize) {
      call.start_second = world_.clock.Second();
      Require(call.connects == 0 || socket_->PresentState() == EKespTCPState::sckConnecting,
              "only a host that does not answer is tried again");
    }
    if (call.member == Member::kAutoDetect) connected_ = Known::kUnknown;
  }
  if (failed) return;
  Forget();
  overran_ = false;
}

// No earlier reply satisfies the next read.
void TcpConversation::Forget() {
  ready_ = false;
  ready_known_ = true;
}

void TcpConversation::Sending(std::string_view bytes, bool /*failed*/) {
  Require(!calls_.empty(), "bytes are sent inside a call");
  Call& call = *calls_.back();
  ++call.sendings;
  if (socket_->Protocol() == EKespProtocol::sckUDPProtocol) {
    Require(bytes == std::string_view("\x00\x01\x00\xF6", 4), "the broadcast is that of the discovery");
    call.discovers = true;
    return;
  }
  Require(bytes.ends_with('\r'), "a command ends with a carriage return");
  if (call.member == Member::kWriteLine) Require(bytes == command_, "a command is sent as it is");
  Forget();
}

void TcpConversation::Taken(const std::string& bytes) {
  if (takes_datagram_) {
    takes_datagram_ = false;
    return;
  }
  Require(!calls_.empty(), "bytes are taken inside a call");
  Call& call = *calls_.back();
  const bool is_binary = call.member == Member::kReadLineBinary;
  if (call.member != Member::kAutoDetect) {
    Require(is_binary || call.member == Member::kReadLine, "reads take bytes");
    Require(!ready_known_ || IsReplyComplete(call), "a read takes a reply that is complete");
  }
  call.taken = bytes;
  call.strip = tcp_->StripCRLF();
  call.check = !is_binary && tcp_->CheckNonAscii() && socket_->Protocol() == EKespProtocol::sckTCPProtocol;
  if (!call.check || !HasInvalid(bytes)) ready_ = false;
}

void TcpConversation::Announcing() {
  if (!listens_ && socket_->PresentState() != EKespTCPState::sckConnecting) Judge();
}

void TcpConversation::Begin(const char* event) {
  open_events_.push_back(event);
  Answer();
}

void TcpConversation::End(const char* event) {
  Require(!open_events_.empty() && std::strcmp(open_events_.back(), event) == 0,
          "an event ends that has begun");
  open_events_.pop_back();
  Answer();
}

void TcpConversation::ConnectBegin() {
  Begin("Connect");
  connected_ = Known::kYes;
}

void TcpConversation::SendProgressBegin(std::int32_t bytesSent, std::int32_t bytesRemaining) {
  Require(bytesSent > 0 && bytesRemaining == 0, "progress is reported as the socket has it");
  Begin("SendProgress");
}

void TcpConversation::DataArrivalBegin(std::int32_t bytesTotal) {
  Require(socket_->PresentState() != EKespTCPState::sckConnecting, "arrivals while connecting raise nothing");
  Require(static_cast<std::size_t>(bytesTotal) == socket_->PeekData().size(),
          "an arrival tells what is pending");
  Begin("DataArrival");
  Judge();
}

void TcpConversation::ErrorBegin(std::int16_t Number, std::wstring& Description, std::int32_t Scode,
                                 const std::wstring& Source, const std::wstring& /*HelpFile*/,
                                 std::int32_t /*HelpContext*/, bool& CancelDisplay) {
  Require(Number >= 10050 && !Description.empty() && Source == L"KespWinsock",
          "an error is told as the socket has it");
  Require(static_cast<std::uint32_t>(Scode) == 0x800A0000U + static_cast<std::uint32_t>(Number),
          "the error's scode");
  CancelDisplay = true;
  Description = L"changed";
  Begin("Error");
}

// A detection may have forgotten a connection that was closed already, which nobody sees.
void TcpConversation::DoubtClosed() {
  const bool is_closed = socket_->PresentState() == EKespTCPState::sckClosed;
  if (is_closed && connected_ == Known::kYes) connected_ = Known::kUnknown;
}

void TcpConversation::AutoDetectBegin() {
  Begin("AutoDetect");
  DoubtClosed();
}

void TcpConversation::AutoDetectEnd() {
  DoubtClosed();
  // A handler may have read before the connection was complete.
  if (calls_.back()->interfered) ready_known_ = false;
  if (calls_.back()->discovers) connected_ = Known::kNo;
  End("AutoDetect");
}

void TcpConversation::AutoDetectUpdate(const std::wstring& cmd, const std::wstring& /*IPAddress*/,
                                       std::int16_t /*Port*/, bool& Abort) {
  Require(cmd == L"*IDN?" || cmd == L"*VER" || cmd == L"t", "a detection tries the commands that it knows");
  if (cmd == L"*IDN?" && calls_.back()->connects > 0) Forget();
  Answer();
  if (!calm_ && input_.HasMore() && input_.Byte() == 0xFF) Abort = true;
}

void TcpConversation::ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos,
                                       const std::wstring& IPAddress) {
  const std::optional<std::string>& taken = calls_.back()->taken;
  Require(taken && Buffer == SystemCodePage().FromBytes(*taken), "the refused reply is told");
  Require(TellsInvalid(*taken, pos), "the position of the first invalid character is told");
  Require(IPAddress == tcp_->IPAddress(), "the address is told");
  Answer();
}

}  // namespace kesp
