// The scripted socket control: its steps, and what its operations do.
#include "network/socket_control_fake.h"

#include <utility>

#include "support/failing_allocation_fake.h"

namespace kesp {

SocketControlFake::SocketControlFake(SocketListener& listener) : listener_(listener) {}

SocketControlFake::~SocketControlFake() = default;

SocketControlFake& SocketControlFake::Then(std::function<void()> step) {
  steps_.push_back(std::move(step));
  return *this;
}

SocketControlFake& SocketControlFake::ThenNothing() {
  return Then([] {});
}

SocketControlFake& SocketControlFake::ThenEnters(EKespTCPState state) {
  return Then([this, state] { state_ = state; });
}

SocketControlFake& SocketControlFake::ThenConnects() {
  return Then([this] {
    state_ = EKespTCPState::sckConnected;
    listener_.OnConnect();
  });
}

SocketControlFake& SocketControlFake::ThenReceives(std::string bytes) {
  return Then([this, bytes = std::move(bytes)] { Receive(bytes); });
}

SocketControlFake& SocketControlFake::ThenPeerCloses() {
  return Then([this] { CloseByPeer(); });
}

SocketControlFake& SocketControlFake::ThenFails(std::int32_t number) {
  return Then([this, number] { Break(number); });
}

SocketControlFake& SocketControlFake::ThenOverruns() {
  return Then([this] {
    pending_.clear();
    Break(kSocketNoBufferSpace);
  });
}

SocketControlFake& SocketControlFake::ThenReportsSent(std::int32_t sent, std::int32_t remaining) {
  return Then([this, sent, remaining] {
    listener_.OnSendProgress(sent, remaining);
    if (remaining == 0) listener_.OnSendComplete();
  });
}

void SocketControlFake::Deliver() {
  if (steps_.empty()) return;
  const std::function<void()> step = std::move(steps_.front());
  steps_.pop_front();
  step();
}

SocketControlFake& SocketControlFake::ThenHears(DatagramSender sender, std::string bytes) {
  return Then([this, sender, bytes = std::move(bytes)] { ReceiveDatagram(sender, bytes); });
}

void SocketControlFake::ReceiveDatagram(DatagramSender sender, const std::string& bytes) {
  datagrams_.push_back({sender, bytes});
  listener_.OnDataArrival(static_cast<std::int32_t>(datagrams_.front().bytes.size()));
}

void SocketControlFake::Receive(const std::string& bytes) {
  pending_ += bytes;
  listener_.OnDataArrival(static_cast<std::int32_t>(pending_.size()));
}

void SocketControlFake::FailCall(int nth, std::int32_t number) {
  faults.Fail(nth);
  fault_number = number;
}

void SocketControlFake::CloseByPeer() {
  state_ = EKespTCPState::sckClosing;
  listener_.OnClose();
}

void SocketControlFake::Break(std::int32_t number) {
  state_ = EKespTCPState::sckError;
  last_error = SocketErrorNotification(number);
  listener_.OnError(last_error);
}

EKespTCPState SocketControlFake::State() const {
  if (closing_left_ > 0 && --closing_left_ == 0) state_ = EKespTCPState::sckClosed;
  return state_;
}

void SocketControlFake::SetProtocol(EKespProtocol protocol) {
  Called("SetProtocol " + std::to_string(static_cast<int>(protocol)));
  protocol_ = protocol;
}

void SocketControlFake::Connect(const std::wstring& host, std::int32_t port) {
  Called("Connect " + std::string(host.begin(), host.end()) + ":" + std::to_string(port));
  host_ = host;
  port_ = port;
  state_ = protocol_ == EKespProtocol::sckUDPProtocol ? state_after_udp_connect : state_after_connect;
  if (on_connect) on_connect();
}

void SocketControlFake::Close() {
  Called("Close");
  steps_.clear();
  pending_.clear();
  datagrams_.clear();
  closing_left_ = closing_reads;
  state_ = closing_reads > 0 ? EKespTCPState::sckClosing : EKespTCPState::sckClosed;
}

void SocketControlFake::SendData(std::string_view bytes) {
  Called("SendData");
  sent += bytes;
  if (on_send) on_send(std::string(bytes));
}

void SocketControlFake::DeliverDue() {
  if (const std::function<void()> due = std::exchange(on_deliver_due, nullptr)) due();
}

std::string_view SocketControlFake::PeekData() const {
  return datagrams_.empty() ? std::string_view(pending_) : datagrams_.front().bytes;
}

std::optional<DatagramSender> SocketControlFake::Sender() const {
  if (datagrams_.empty()) return std::nullopt;
  return datagrams_.front().sender;
}

std::string SocketControlFake::GetData() {
  const PassingAllocations passing;
  calls.emplace_back("GetData");
  if (datagrams_.empty()) return std::exchange(pending_, std::string());
  std::string bytes = std::move(datagrams_.front().bytes);
  datagrams_.pop_front();
  return bytes;
}

void SocketControlFake::Called(std::string call) {
  {
    const PassingAllocations passing;
    calls.push_back(std::move(call));
  }
  if (faults.IsFailing()) throw SocketFailure(fault_number);
}

}  // namespace kesp
