// A scripted socket control for tests.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "network/socket_control.h"
#include "network/socket_errors.h"
#include "support/failing_call_fake.h"

namespace kesp {

// Plays a script: each Deliver (called by the test's message pump) works off one step. Close throws the rest
// of the script away, as a real control drops the notifications of an earlier connection.
class SocketControlFake final : public SocketControl {
 public:
  explicit SocketControlFake(SocketListener& listener);
  ~SocketControlFake() override;

  // A step of one's own; it runs inside the pump.
  SocketControlFake& Then(std::function<void()> step);
  SocketControlFake& ThenNothing();
  SocketControlFake& ThenEnters(EKespTCPState state);
  SocketControlFake& ThenConnects();
  SocketControlFake& ThenReceives(std::string bytes);
  SocketControlFake& ThenPeerCloses();
  SocketControlFake& ThenFails(std::int32_t number);
  // The receive limit is reached.
  SocketControlFake& ThenOverruns();
  SocketControlFake& ThenReportsSent(std::int32_t sent, std::int32_t remaining);

  // Works off one step of the script, if there is one.
  void Deliver();

  // UDP: a datagram arrives from that sender.
  SocketControlFake& ThenHears(DatagramSender sender, std::string bytes);

  // Lets a datagram arrive at this moment.
  void ReceiveDatagram(DatagramSender sender, const std::string& bytes);

  // Lets bytes arrive at this moment.
  void Receive(const std::string& bytes);

  // The nth call from now on of an operation that may fail (1 is the next) fails with that number.
  void FailCall(int nth, std::int32_t number);
  FailingCallFake faults;
  std::int32_t fault_number = kSocketNoBufferSpace;

  // The other side closes the connection, or it breaks with that number, at this moment.
  void CloseByPeer();
  void Break(std::int32_t number);

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

  // Whether the test counts as the control's thread.
  bool is_of_this_thread = true;

  // What was called, in order; PeekData and the readings of properties left out.
  std::vector<std::string> calls;
  std::string sent;
  SocketError last_error;

  EKespTCPState State() const override;
  bool IsOfThisThread() const override { return is_of_this_thread; }
  EKespProtocol Protocol() const override { return protocol_; }
  void SetProtocol(EKespProtocol protocol) override;
  std::wstring RemoteHost() const override { return host_; }
  std::int32_t RemotePort() const override { return port_; }

  void Connect(const std::wstring& host, std::int32_t port) override;
  void Close() override;
  void SendData(std::string_view bytes) override;
  void DeliverDue() override;
  std::string_view PeekData() const override;
  std::optional<DatagramSender> Sender() const override;
  std::string GetData() override;

 private:
  void Called(std::string call);

  struct Datagram {
    DatagramSender sender;
    std::string bytes;
  };

  SocketListener& listener_;
  std::deque<std::function<void()>> steps_;
  mutable int closing_left_ = 0;
  mutable EKespTCPState state_ = EKespTCPState::sckClosed;
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
  std::wstring host_;
  std::int32_t port_ = 0;
  std::string pending_;
  std::deque<Datagram> datagrams_;
};

}  // namespace kesp
