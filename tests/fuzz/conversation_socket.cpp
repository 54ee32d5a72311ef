// What each byte lets happen at the socket.
#include "tests/fuzz/conversation_socket.h"

#include <algorithm>
#include <utility>

#include "network/socket_errors.h"

namespace kesp {

namespace {

constexpr std::uint32_t kLongStepMs = 400;
constexpr std::size_t kMostPending = 300'000;

// Senders of datagrams: few, so that duplicates come.
constexpr std::uint32_t kFirstSender = 0x0A000001;
constexpr std::size_t kSenders = 6;
// 10.0.0.9 answers a broadcast in a good network.
constexpr std::uint32_t kGoodSender = 0x0A000009;
constexpr std::uint16_t kDiscoveryPort = 30718;

}  // namespace

ConversationSocket::ConversationSocket(SocketListener& listener, SocketWatcher& watcher,
                                       ConversationClock& clock, FuzzInput& input)
    : listener_(listener), watcher_(watcher), clock_(clock), input_(input) {}

void ConversationSocket::Step() {
  if (good_) {
    clock_.Advance(10);
    if (state_ == EKespTCPState::sckConnecting) {
      BecomeConnected();
    } else if (!unsent_reply_.empty() && state_ == EKespTCPState::sckConnected) {
      pending_ += std::exchange(unsent_reply_, {});
      Announce();
    } else if (!unsent_reply_.empty() && state_ == EKespTCPState::sckOpen) {
      unsent_reply_.clear();
      datagrams_.push_back({{.address = kGoodSender, .port = kDiscoveryPort}, "\xF7"});
      Announce();
    }
    return;
  }
  if (!input_.HasMore()) {
    clock_.Advance(kLongStepMs);
    return;
  }
  const std::uint8_t step = input_.Byte();
  clock_.Advance(1);
  switch (step % 8) {
    case 0:
      clock_.Advance(step);
      return;
    case 1:
      clock_.Advance(step * 4U);
      return;
    case 2:
    case 3:
      if (state_ == EKespTCPState::sckConnecting && step < 0xE0) return BecomeConnected();
      [[fallthrough]];
    case 4:
      return protocol_ == EKespProtocol::sckUDPProtocol ? ReceiveDatagram() : Receive();
    case 5:
      return ReportSent();
    case 6:
      return Break();
    default:
      return watcher_.Message();
  }
}

void ConversationSocket::BeGood(std::string reply) {
  good_ = true;
  good_reply_ = std::move(reply);
  fail_in_ = 0;
  closing_reads = 0;
}

void ConversationSocket::FailCall(int nth, std::int32_t number) {
  fail_in_ = nth;
  fail_number_ = number;
}

EKespTCPState ConversationSocket::State() const {
  if (closing_left_ > 0) {
    clock_.Advance(100);
    if (--closing_left_ == 0) state_ = EKespTCPState::sckClosed;
  }
  return state_;
}

void ConversationSocket::SetProtocol(EKespProtocol protocol) {
  Require(state_ == EKespTCPState::sckClosed, "the protocol is set while the socket is closed");
  if (Fails()) throw SocketFailure(fail_number_);
  protocol_ = protocol;
}

void ConversationSocket::Connect(const std::wstring& host, std::int32_t port) {
  Require(state_ == EKespTCPState::sckClosed, "a closed socket is connected");
  Require(port >= 1 && port <= 65535, "the port to connect to is one");
  watcher_.Connecting();
  if (Fails()) throw SocketFailure(fail_number_);
  host_ = host;
  port_ = port;
  hosts_.emplace_back(host.begin(), host.end());
  state_ = protocol_ == EKespProtocol::sckUDPProtocol ? EKespTCPState::sckOpen : EKespTCPState::sckConnecting;
}

void ConversationSocket::Close() {
  const bool fails = close_fails && Fails();
  watcher_.Closing(fails);
  if (fails) throw SocketFailure(fail_number_);
  pending_.clear();
  unsent_reply_.clear();
  datagrams_.clear();
  sent_unreported_ = 0;
  closing_left_ = closing_reads;
  state_ = closing_reads > 0 ? EKespTCPState::sckClosing : EKespTCPState::sckClosed;
}

void ConversationSocket::SendData(std::string_view bytes) {
  const bool can = state_ == EKespTCPState::sckConnected || state_ == EKespTCPState::sckOpen;
  Require(can, "bytes are sent on a connection");
  const bool fails = Fails();
  watcher_.Sending(bytes, fails);
  if (fails) throw SocketFailure(fail_number_);
  sent_unreported_ += static_cast<std::int32_t>(bytes.size());
  if (good_) unsent_reply_ = good_reply_;
}

void ConversationSocket::DeliverDue() {
  watcher_.Pumping();
  // Sometimes the system takes all at once, and says so at the next pumping.
  if (!good_ && sent_unreported_ > 0 && input_.HasMore() && input_.Flag()) ReportSent();
}

std::string_view ConversationSocket::PeekData() const {
  if (protocol_ == EKespProtocol::sckTCPProtocol) return pending_;
  return datagrams_.empty() ? std::string_view() : std::string_view(datagrams_.front().bytes);
}

std::optional<DatagramSender> ConversationSocket::Sender() const {
  if (datagrams_.empty()) return std::nullopt;
  return datagrams_.front().sender;
}

std::string ConversationSocket::GetData() {
  std::string bytes;
  if (protocol_ == EKespProtocol::sckTCPProtocol) {
    bytes = std::exchange(pending_, std::string());
  } else if (!datagrams_.empty()) {
    bytes = std::move(datagrams_.front().bytes);
    datagrams_.pop_front();
  }
  watcher_.Taken(bytes);
  return bytes;
}

bool ConversationSocket::Fails() {
  if (fail_in_ <= 0 || --fail_in_ > 0) return false;
  watcher_.Failing();
  return true;
}

void ConversationSocket::BecomeConnected() {
  const std::shared_ptr<void> keep = listener_.KeepAlive();
  state_ = EKespTCPState::sckConnected;
  listener_.OnConnect();
  watcher_.Connected();
}

// Bytes arrive; while the socket is still connecting, too, which the transport is to leave alone.
void ConversationSocket::Receive() {
  if (state_ != EKespTCPState::sckConnected && state_ != EKespTCPState::sckConnecting) return;
  const std::uint8_t length = input_.Byte();
  if (length == 0xFF) {
    // Seldom so many that the log does not show them all, because that takes long.
    const std::uint8_t fill = input_.Byte();
    pending_.append(fill < 8 ? 70'000U : 300U, static_cast<char>(fill));
  } else {
    pending_ += input_.Bytes(1 + length % 16U);
  }
  if (pending_.size() > kMostPending) pending_.resize(kMostPending);
  if (!pending_.empty()) Announce();
}

void ConversationSocket::ReceiveDatagram() {
  if (state_ != EKespTCPState::sckOpen) return;
  const std::uint8_t which = input_.Byte();
  const DatagramSender sender{.address = kFirstSender + static_cast<std::uint32_t>(which % kSenders),
                              .port = static_cast<std::uint16_t>(which)};
  datagrams_.push_back({sender, std::string(input_.Bytes(which / 32U))});
  Announce();
}

void ConversationSocket::Announce() {
  const std::shared_ptr<void> keep = listener_.KeepAlive();
  const std::size_t total =
      protocol_ == EKespProtocol::sckUDPProtocol ? datagrams_.front().bytes.size() : pending_.size();
  watcher_.Announcing();
  listener_.OnDataArrival(static_cast<std::int32_t>(total));
}

void ConversationSocket::Break() {
  if (state_ == EKespTCPState::sckClosed) return;
  const std::uint8_t how = input_.Byte();
  const std::shared_ptr<void> keep = listener_.KeepAlive();
  if (how % 4 == 0 && state_ == EKespTCPState::sckConnected) {
    state_ = EKespTCPState::sckClosing;
    listener_.OnClose();
    return;
  }
  const bool overrun = how % 4 == 1 && state_ == EKespTCPState::sckConnected;
  if (overrun) {
    pending_.clear();
    watcher_.Overran();
  }
  const std::int32_t number = overrun ? kSocketNoBufferSpace : 10050 + how % 32;
  if (!overrun && number == kSocketNoBufferSpace) return;
  state_ = EKespTCPState::sckError;
  SocketError error = SocketErrorNotification(number);
  listener_.OnError(error);
}

void ConversationSocket::ReportSent() {
  if (sent_unreported_ <= 0) return;
  const std::shared_ptr<void> keep = listener_.KeepAlive();
  const std::int32_t sent = std::exchange(sent_unreported_, 0);
  listener_.OnSendProgress(sent, 0);
  listener_.OnSendComplete();
}

}  // namespace kesp
