// The socket seam: one TCP connection or one UDP port, driven asynchronously.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "network/datagram_sender.h"
#include "support/enumerations.h"

namespace kesp {

// What the Error notification carries. The listener may change description and cancel_display.
struct SocketError {
  std::int16_t number = 0;  // the Winsock error number, for example 10061
  std::wstring description;
  std::int32_t scode = 0;  // the same number as an HRESULT of a control (facility control)
  std::wstring source;
  std::wstring help_file;
  std::int32_t help_context = 0;
  bool cancel_display = false;
};

// Receives the notifications of a socket, on the thread that made the socket, during message pumping only:
// from the system's messages and from SocketControl::DeliverDue, never from inside another call of the
// control.
class SocketListener {
 public:
  virtual ~SocketListener() = default;

  virtual void OnConnect() = 0;
  // The other side closed the connection. Everything that it had sent was announced before.
  virtual void OnClose() = 0;
  virtual void OnError(SocketError& error) = 0;
  // bytes_total bytes wait to be read (those of earlier arrivals that were not taken included; UDP: the bytes
  // of the oldest datagram, 0 for an empty one).
  virtual void OnDataArrival(std::int32_t bytes_total) = 0;
  virtual void OnSendProgress(std::int32_t bytes_sent, std::int32_t bytes_remaining) = 0;
  virtual void OnSendComplete() = 0;

  // Something that keeps the listener, and with it the control, alive while it is held. The control holds it
  // for the length of one notification, so that a client may drop its last reference inside a handler. Throws
  // when the listener is being destroyed by another thread: then it is told nothing any more.
  virtual std::shared_ptr<void> KeepAlive() = 0;
};

// How many received bytes a control holds for its reader at the most, 64 MiB. When an instrument sends more
// than that without being read, the control drops what it holds, goes to sckError and reports error 10055.
inline constexpr std::size_t kReceiveLimit = std::size_t{64} * 1024 * 1024;

// One socket. Used by one thread, the one that connects first, to which the notifications come; Close, and
// its end, may come from another one that keeps the two apart. Never blocks. Operations that fail throw
// Failure with a Winsock error number or one of 40006 (wrong protocol or connection state), 40014 (invalid
// argument), and the source "KespWinsock". It never listens, so it has no connection requests to report.
//
// States: sckClosed -> Connect -> (sckResolvingHost -> sckHostResolved ->) sckConnecting -> sckConnected;
// sckOpen after Connect with the UDP protocol; sckClosing after the other side closed; sckError after a
// failure that was reported by OnError. Close leads back to sckClosed from every state.
class SocketControl {
 public:
  virtual ~SocketControl() = default;

  virtual EKespTCPState State() const = 0;

  // Whether pumping on the calling thread delivers the notifications. True until the first Connect.
  virtual bool IsOfThisThread() const = 0;

  // Which protocol the next Connect uses. Setting it while the state is not sckClosed throws 40006.
  virtual EKespProtocol Protocol() const = 0;
  virtual void SetProtocol(EKespProtocol protocol) = 0;

  // The host and port of the last Connect, as given; empty and 0 before.
  virtual std::wstring RemoteHost() const = 0;
  virtual std::int32_t RemotePort() const = 0;

  // Starts connecting and returns. TCP: OnConnect or OnError follow. UDP: opens a port of the system's choice
  // whose datagrams go to that host and port; the state is sckOpen on return. host is an IPv4 address in
  // dotted form, or a name, which is resolved in the background. Throws 40006 when the state is not
  // sckClosed.
  virtual void Connect(const std::wstring& host, std::int32_t port) = 0;

  // Closes at once, without notification, and drops everything received and not yet read.
  virtual void Close() = 0;

  // Sends all bytes, in one operation where the system takes them; what it does not take is sent as soon as
  // it does. OnSendProgress and, at the end, OnSendComplete follow. Throws 40006 when there is no connection.
  virtual void SendData(std::string_view bytes) = 0;

  // Delivers the notifications that no message of the system brings. Whoever pumps messages after SendData
  // calls it first, and keeps the control alive meanwhile. Posting a message for them instead would cost a
  // fifth of the time of a short exchange under Wine.
  virtual void DeliverDue() = 0;

  // The bytes received and not yet taken (UDP: those of the oldest datagram). The view holds until the next
  // call of GetData, Close or the message pump.
  virtual std::string_view PeekData() const = 0;

  // UDP: where the oldest datagram came from; nothing when none waits.
  virtual std::optional<DatagramSender> Sender() const = 0;

  // Takes those bytes out of the control; never fails. The cost does not depend on their number or on how
  // many pieces they came in.
  virtual std::string GetData() = 0;
};

// Makes a control that reports to `listener`, which must outlive it.
using SocketControlFactory = std::function<std::unique_ptr<SocketControl>(SocketListener& listener)>;

}  // namespace kesp
