// What the Winsock control does when the system has posted something to its window.

#include "network/socket_errors.h"
#include "network/winsock_control_win.h"

namespace kesp {

namespace {

// One receive call takes at most this much, so that a flood cannot hold the message pump. A datagram fits in.
constexpr int kScratchBytes = 65536;

}  // namespace

void WinsockControl::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  if (!NotificationCode::BelongsTo(message, connection_)) return;
  switch (NotificationCode::KindOf(message)) {
    case NotificationKind::kSocket:
      OnSocketEvent(WSAGETSELECTEVENT(lparam), WSAGETSELECTERROR(lparam));
      break;
    case NotificationKind::kHostLookup:
      OnHostLookup(resources_->lookup.Finish(wparam, lparam));
      break;
  }
}

void WinsockControl::OnHostLookup(const HostLookup::Result& result) {
  if (state_ != EKespTCPState::sckResolvingHost) return;
  int error = result.error;
  if (error == 0) {
    state_ = EKespTCPState::sckHostResolved;
    error = Open(result.address);
  }
  if (error != 0) Fail(error);
}

void WinsockControl::OnSocketEvent(int event, int error) {
  if (!socket_.IsOpen()) return;
  switch (event) {
    case FD_CONNECT:
      OnConnected(error);
      break;
    case FD_READ:
      OnReadable();
      break;
    case FD_WRITE:
      OnWritable();
      break;
    case FD_CLOSE:
      OnPeerClosed(error);
      break;
    default:
      break;
  }
}

void WinsockControl::OnConnected(int error) {
  if (error != 0) {
    Fail(error);
    return;
  }
  if (state_ != EKespTCPState::sckConnecting) return;
  state_ = EKespTCPState::sckConnected;
  listener_.OnConnect();
}

void WinsockControl::OnReadable() {
  if (protocol_ == EKespProtocol::sckUDPProtocol) {
    OnDatagramReadable();
    return;
  }
  const Receipt receipt = ReceiveOnce();
  if (receipt.error != 0) {
    Fail(receipt.error);
  } else if (receipt.has_bytes) {
    ReportArrival();
  }
}

// Adds what one receive call brings to the buffer.
WinsockControl::Receipt WinsockControl::ReceiveOnce() {
  if (scratch_ == nullptr) scratch_ = std::make_unique_for_overwrite<char[]>(kScratchBytes);
  const int count = recv(socket_.get(), scratch_.get(), kScratchBytes, 0);
  if (count > 0) {
    if (received_.AppendToStream({scratch_.get(), static_cast<std::size_t>(count)}))
      return {.has_bytes = true};
    return {.error = kSocketNoBufferSpace};
  }
  // The end of the stream is announced by a message of its own.
  if (count == 0) return {};
  const int error = WSAGetLastError();
  return {.error = error == WSAEWOULDBLOCK ? 0 : error};
}

void WinsockControl::OnDatagramReadable() {
  if (scratch_ == nullptr) scratch_ = std::make_unique_for_overwrite<char[]>(kScratchBytes);
  sockaddr_in from{};
  int from_size = sizeof from;
  const int count = recvfrom(socket_.get(), scratch_.get(), kScratchBytes, 0,
                             reinterpret_cast<sockaddr*>(&from), &from_size);
  // Errors are ICMP's answers to earlier datagrams: the port stays open.
  if (count < 0) return;
  const DatagramSender sender{.address = ntohl(from.sin_addr.s_addr), .port = ntohs(from.sin_port)};
  if (received_.AddDatagram({scratch_.get(), static_cast<std::size_t>(count)}, sender)) ReportArrival();
}

void WinsockControl::ReportArrival() {
  listener_.OnDataArrival(static_cast<std::int32_t>(received_.Front().size()));
}

void WinsockControl::OnWritable() {
  if (send_queue_.Unsent().empty()) return;
  const int error = SendUnsent();
  if (error != 0) {
    Fail(error);
  } else {
    ReportSent();
  }
}

// Sends until the system refuses: only then it tells again when it takes more.
int WinsockControl::SendUnsent() {
  while (!send_queue_.Unsent().empty()) {
    const Taken taken = SendNow(send_queue_.Unsent());
    if (taken.error != 0) return taken.error;
    if (taken.count == 0) break;
    send_queue_.TookFromFront(taken.count);
  }
  return 0;
}

void WinsockControl::DeliverDue() {
  if (!send_report_due_) return;
  try {
    ReportSent();
  } catch (...) {
    // Swallowed as in the window procedure: what a listener throws is not the failure of the call that pumps.
  }
}

void WinsockControl::ReportSent() {
  send_report_due_ = false;
  const unsigned connection = connection_;
  const SendProgress progress = send_queue_.Report();
  listener_.OnSendProgress(progress.sent, progress.remaining);
  if (progress.remaining == 0 && connection == connection_) listener_.OnSendComplete();
}

// What the peer sent before it closed comes first, also when it resets the connection after that.
void WinsockControl::OnPeerClosed(int error) {
  const unsigned connection = connection_;
  bool arrived = false;
  while (error == 0) {
    const Receipt receipt = ReceiveOnce();
    error = receipt.error;
    if (!receipt.has_bytes) break;
    arrived = true;
  }
  // At the receive limit nothing is left of it.
  if (arrived && !received_.Front().empty()) ReportArrival();
  if (connection != connection_) return;
  if (error != 0) {
    Fail(error);
    return;
  }
  socket_.Reset();
  send_queue_.Clear();
  state_ = EKespTCPState::sckClosing;
  listener_.OnClose();
}

void WinsockControl::Fail(int error) {
  socket_.Reset();
  send_queue_.Clear();
  state_ = EKespTCPState::sckError;
  SocketError notification = SocketErrorNotification(error);
  listener_.OnError(notification);
}

}  // namespace kesp
