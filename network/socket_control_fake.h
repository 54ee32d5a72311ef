// A scripted socket control for tests.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "network/socket_control.h"
#include "network/socket_errors.h"

namespace kesp {

// Plays a script: each Deliver (called by the test's message pump) works off one step. Close throws the rest
// of the script away, as a real control drops the notifications of an earlier connection.
class SocketControlFake final : public SocketControl {
 public:
  explicit SocketControlFake(SocketListener& listener) : listener_(listener) {}

  // A step of one's own; it runs inside the pump.
  SocketControlFake& Then(std::function<void()> step) {
    steps_.push_back(std::move(step));
    return *this;
  }
  SocketControlFake& ThenNothing() {
    return Then([] {});
  }
  SocketControlFake& ThenEnters(EKespTCPState state) {
    return Then([this, state] { state_ = state; });
  }
  SocketControlFake& ThenConnects() {
    return Then([this] {
      state_ = EKespTCPState::sckConnected;
      listener_.OnConnect();
    });
  }
  SocketControlFake& ThenReceives(std::string bytes) {
    return Then([this, bytes = std::move(bytes)] { Receive(bytes); });
  }
  SocketControlFake& ThenPeerCloses() {
    return Then([this] {
      state_ = EKespTCPState::sckClosing;
      listener_.OnClose();
    });
  }
  SocketControlFake& ThenFails(std::int32_t number) {
    return Then([this, number] {
      state_ = EKespTCPState::sckError;
      last_error = SocketErrorNotification(number);
      listener_.OnError(last_error);
    });
  }
  // The receive limit is reached.
  SocketControlFake& ThenOverruns() {
    return Then([this] {
      pending_.clear();
      state_ = EKespTCPState::sckError;
      last_error = SocketErrorNotification(kSocketNoBufferSpace);
      listener_.OnError(last_error);
    });
  }
  SocketControlFake& ThenReportsSent(std::int32_t sent, std::int32_t remaining) {
    return Then([this, sent, remaining] {
      listener_.OnSendProgress(sent, remaining);
      if (remaining == 0) listener_.OnSendComplete();
    });
  }

  // Works off one step of the script, if there is one.
  void Deliver() {
    if (steps_.empty()) return;
    const std::function<void()> step = std::move(steps_.front());
    steps_.pop_front();
    step();
  }

  // UDP: a datagram arrives from that sender.
  SocketControlFake& ThenHears(DatagramSender sender, std::string bytes) {
    return Then([this, sender, bytes = std::move(bytes)] { ReceiveDatagram(sender, bytes); });
  }

  // Lets a datagram arrive at this moment.
  void ReceiveDatagram(DatagramSender sender, const std::string& bytes) {
    datagrams_.push_back({sender, bytes});
    listener_.OnDataArrival(static_cast<std::int32_t>(datagrams_.front().bytes.size()));
  }

  // Lets bytes arrive at this moment.
  void Receive(const std::string& bytes) {
    pending_ += bytes;
    listener_.OnDataArrival(static_cast<std::int32_t>(pending_.size()));
  }

  // The nth call from now on of an operation that may fail (1 is the next) fails with that number.
  void FailCall(int nth, std::int32_t number) {
    fail_in_ = nth;
    fail_number_ = number;
  }

  // Runs at the end of each Connect, to script what follows that attempt.
  std::function<void()> on_connect;
  // Runs at the end of each SendData with what was sent, to script the answer.
  std::function<void(const std::string& bytes)> on_send;
  // Runs at the next DeliverDue, once.
  std::function<void()> on_deliver_due;
  // What Connect leads to at once, by protocol.
  EKespTCPState state_after_connect = EKespTCPState::sckConnecting;
  EKespTCPState state_after_udp_connect = EKespTCPState::sckOpen;
  // After Close the state reads sckClosing that many times before it reads sckClosed.
  int closing_reads = 0;

  // What was called, in order; PeekData and the readings of properties left out.
  std::vector<std::string> calls;
  std::string sent;
  SocketError last_error;

  EKespTCPState State() const override {
    if (closing_left_ > 0 && --closing_left_ == 0) state_ = EKespTCPState::sckClosed;
    return state_;
  }
  EKespProtocol Protocol() const override { return protocol_; }
  void SetProtocol(EKespProtocol protocol) override {
    Called("SetProtocol " + std::to_string(static_cast<int>(protocol)));
    protocol_ = protocol;
  }
  std::wstring RemoteHost() const override { return host_; }
  std::int32_t RemotePort() const override { return port_; }

  void Connect(const std::wstring& host, std::int32_t port) override {
    Called("Connect " + std::string(host.begin(), host.end()) + ":" + std::to_string(port));
    host_ = host;
    port_ = port;
    state_ = protocol_ == EKespProtocol::sckUDPProtocol ? state_after_udp_connect : state_after_connect;
    if (on_connect) on_connect();
  }
  void Close() override {
    Called("Close");
    steps_.clear();
    pending_.clear();
    datagrams_.clear();
    closing_left_ = closing_reads;
    state_ = closing_reads > 0 ? EKespTCPState::sckClosing : EKespTCPState::sckClosed;
  }
  void SendData(std::string_view bytes) override {
    Called("SendData");
    sent += bytes;
    if (on_send) on_send(std::string(bytes));
  }
  void DeliverDue() override {
    if (const std::function<void()> due = std::exchange(on_deliver_due, nullptr)) due();
  }
  std::string_view PeekData() const override {
    return datagrams_.empty() ? std::string_view(pending_) : datagrams_.front().bytes;
  }
  std::optional<DatagramSender> Sender() const override {
    if (datagrams_.empty()) return std::nullopt;
    return datagrams_.front().sender;
  }
  std::string GetData() override {
    Called("GetData");
    if (datagrams_.empty()) return std::exchange(pending_, std::string());
    std::string bytes = std::move(datagrams_.front().bytes);
    datagrams_.pop_front();
    return bytes;
  }

 private:
  void Called(std::string call) {
    calls.push_back(std::move(call));
    if (fail_in_ > 0 && --fail_in_ == 0) throw SocketFailure(fail_number_);
  }

  struct Datagram {
    DatagramSender sender;
    std::string bytes;
  };

  SocketListener& listener_;
  std::deque<std::function<void()>> steps_;
  int fail_in_ = 0;
  std::int32_t fail_number_ = 0;
  mutable int closing_left_ = 0;
  mutable EKespTCPState state_ = EKespTCPState::sckClosed;
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
  std::wstring host_;
  std::int32_t port_ = 0;
  std::string pending_;
  std::deque<Datagram> datagrams_;
};

}  // namespace kesp
