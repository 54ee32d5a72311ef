// A socket whose peer, network and failures are the bytes of a fuzzer.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "network/socket_control.h"
#include "tests/fuzz/conversation_world.h"
#include "tests/fuzz/input.h"

namespace kesp {

// Told what happens at the socket, so that a model can keep in step.
class SocketWatcher {
 public:
  virtual ~SocketWatcher() = default;

  // A pumping of the transport's own begins.
  virtual void Pumping() {}
  // Connect was called; the state is still sckClosed.
  virtual void Connecting() {}
  // The connection was announced.
  virtual void Connected() {}
  // Close was called; `failed` when it fails.
  virtual void Closing(bool /*failed*/) {}
  virtual void Sending(std::string_view /*bytes*/, bool /*failed*/) {}
  virtual void Taken(const std::string& /*bytes*/) {}
  // Bytes are about to be announced.
  virtual void Announcing() {}
  // The receive limit was reached, which is about to be announced.
  virtual void Overran() {}
  // A call is about to fail.
  virtual void Failing() {}
  // A message of the client's own came in the pump.
  virtual void Message() {}
};

// Holds to the contract of the seam, and requires that its user does. Each Step, called by the pump, lets one
// thing happen; when the bytes are used up, nothing happens any more.
class ConversationSocket final : public SocketControl {
 public:
  ConversationSocket(SocketListener& listener, SocketWatcher& watcher, ConversationClock& clock,
                     FuzzInput& input);

  void Step();
  // From now on the network is good: connections are made at once, each command is answered so, and each
  // broadcast by 10.0.0.9.
  void BeGood(std::string reply);

  void FailCall(int nth, std::int32_t number);
  // How often State reads sckClosing after Close.
  int closing_reads = 0;
  // Whether Close may be the call that fails.
  bool close_fails = false;

  const std::string& pending() const { return pending_; }
  const std::deque<std::string>& hosts_connected_to() const { return hosts_; }

  EKespTCPState State() const override;
  EKespTCPState PresentState() const { return state_; }
  bool IsOfThisThread() const override { return true; }
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
  struct Datagram {
    DatagramSender sender;
    std::string bytes;
  };

  bool Fails();
  void BecomeConnected();
  void Receive();
  void ReceiveDatagram();
  void Announce();
  void Break();
  void ReportSent();

  SocketListener& listener_;
  SocketWatcher& watcher_;
  ConversationClock& clock_;
  FuzzInput& input_;
  bool good_ = false;
  std::string good_reply_;
  int fail_in_ = 0;
  std::int32_t fail_number_ = 0;
  mutable int closing_left_ = 0;
  mutable EKespTCPState state_ = EKespTCPState::sckClosed;
  EKespProtocol protocol_ = EKespProtocol::sckTCPProtocol;
  std::wstring host_;
  std::int32_t port_ = 0;
  std::string pending_;
  std::string unsent_reply_;
  std::int32_t sent_unreported_ = 0;
  std::deque<Datagram> datagrams_;
  std::deque<std::string> hosts_;
};

}  // namespace kesp
