// The calls of the Winsock control: connecting, closing, sending.
#include "network/winsock_control_win.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <limits>

#include "network/socket_control_win.h"
#include "network/socket_errors.h"
#include "support/text.h"

namespace kesp {

namespace {

constexpr std::int32_t kHighestPort = 65535;

// Room in the system for answers that come all at once, before the first message is pumped. Linux, where each
// datagram costs some 800 bytes of it, gives less than is asked for.
constexpr int kDatagramRoom = 1024 * 1024;

sockaddr_in AddressOf(std::uint32_t address, std::int32_t port) {
  sockaddr_in name{};
  name.sin_family = AF_INET;
  name.sin_port = htons(static_cast<u_short>(port));
  name.sin_addr.s_addr = address;
  return name;
}

void SetFlag(SOCKET socket, int level, int option) {
  const BOOL on = TRUE;
  setsockopt(socket, level, option, reinterpret_cast<const char*>(&on), sizeof on);
}

// The address that a dotted text stands for, in network byte order.
std::optional<std::uint32_t> Dotted(const std::wstring& host) {
  in_addr address{};
  if (InetPtonW(AF_INET, host.c_str(), &address) != 1) return std::nullopt;
  return address.s_addr;
}

}  // namespace

std::unique_ptr<SocketControl> MakeSocketControl(SocketListener& listener) {
  return std::make_unique<WinsockControl>(listener);
}

void WinsockControl::SetProtocol(EKespProtocol protocol) {
  if (state_ != EKespTCPState::sckClosed) throw SocketFailure(kSocketBadState);
  if (protocol != EKespProtocol::sckTCPProtocol && protocol != EKespProtocol::sckUDPProtocol) {
    throw SocketFailure(kSocketInvalidArgument);
  }
  protocol_ = protocol;
}

void WinsockControl::Connect(const std::wstring& host, std::int32_t port) {
  if (state_ != EKespTCPState::sckClosed) throw SocketFailure(kSocketBadState);
  if (host.empty() || port < 1 || port > kHighestPort) throw SocketFailure(kSocketInvalidArgument);
  TakeResources();
  ++connection_;
  remote_host_ = host;
  remote_port_ = port;
  int error = 0;
  if (const std::optional<std::uint32_t> address = Dotted(host)) {
    error = Open(*address);
  } else if (const std::optional<std::string> name = SystemCodePage().ToExactBytes(host)) {
    error = resources_->lookup.Start(resources_->window.handle(), Code(NotificationKind::kHostLookup), *name);
    if (error == 0) state_ = EKespTCPState::sckResolvingHost;
  } else {
    error = WSAHOST_NOT_FOUND;
  }
  if (error == 0) return;
  Close();
  throw SocketFailure(error);
}

void WinsockControl::TakeResources() {
  if (resources_ != nullptr) return;
  auto resources = std::make_unique<Resources>(static_cast<MessageHandler&>(*this));
  if (const int error = resources->library.error()) throw SocketFailure(error);
  if (resources->window.handle() == nullptr) throw SocketFailure(kSocketNoBufferSpace);
  resources_ = std::move(resources);
}

// Goes on where the address is known.
int WinsockControl::Open(std::uint32_t address) {
  remote_address_ = address;
  return protocol_ == EKespProtocol::sckUDPProtocol ? OpenDatagrams() : OpenStream();
}

int WinsockControl::OpenStream() {
  socket_ = SocketHandle(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
  if (!socket_.IsOpen()) return WSAGetLastError();
  // FD_WRITE is asked for only while something waits to be sent: it would cost a message per connection.
  if (const int error = Watch(FD_CONNECT | FD_READ | FD_CLOSE)) return error;
  SetFlag(socket_.get(), IPPROTO_TCP, TCP_NODELAY);
  state_ = EKespTCPState::sckConnecting;
  const sockaddr_in peer = AddressOf(remote_address_, remote_port_);
  if (connect(socket_.get(), reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0) return 0;
  const int error = WSAGetLastError();
  return error == WSAEWOULDBLOCK ? 0 : error;
}

int WinsockControl::OpenDatagrams() {
  socket_ = SocketHandle(socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
  if (!socket_.IsOpen()) return WSAGetLastError();
  SetFlag(socket_.get(), SOL_SOCKET, SO_BROADCAST);
  setsockopt(socket_.get(), SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&kDatagramRoom),
             sizeof kDatagramRoom);
  const sockaddr_in any = AddressOf(INADDR_ANY, 0);
  if (bind(socket_.get(), reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0) return WSAGetLastError();
  if (const int error = Watch(FD_READ)) return error;
  state_ = EKespTCPState::sckOpen;
  return 0;
}

// Has the system post a message for these events; it also makes the socket one that never blocks.
int WinsockControl::Watch(long events) {
  const UINT message = Code(NotificationKind::kSocket);
  const int result = WSAAsyncSelect(socket_.get(), resources_->window.handle(), message, events);
  return result == 0 ? 0 : WSAGetLastError();
}

void WinsockControl::Close() {
  ++connection_;  // what is still in the message queue belongs to the past
  if (resources_ != nullptr) resources_->lookup.Cancel();
  socket_.Reset();
  received_.Clear();
  send_queue_.Clear();
  send_report_due_ = false;
  state_ = EKespTCPState::sckClosed;
}

void WinsockControl::SendData(std::string_view bytes) {
  if (state_ == EKespTCPState::sckOpen) {
    if (const int error = SendDatagram(bytes)) throw SocketFailure(error);
  } else if (state_ == EKespTCPState::sckConnected) {
    if (const int error = SendStream(bytes)) throw SocketFailure(error);
  } else {
    throw SocketFailure(kSocketBadState);
  }
  send_report_due_ = true;
}

int WinsockControl::SendStream(std::string_view bytes) {
  // Nothing may overtake what waits already.
  if (!send_queue_.Unsent().empty()) {
    send_queue_.Add(bytes);
    return 0;
  }
  const Taken taken = SendNow(bytes);
  if (taken.error != 0) return taken.error;
  send_queue_.TookDirectly(taken.count);
  if (taken.count == bytes.size()) return 0;
  send_queue_.Add(bytes.substr(taken.count));
  return Watch(FD_READ | FD_WRITE | FD_CLOSE);
}

int WinsockControl::SendDatagram(std::string_view bytes) {
  const sockaddr_in peer = AddressOf(remote_address_, remote_port_);
  const int sent = sendto(socket_.get(), bytes.data(), static_cast<int>(bytes.size()), 0,
                          reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
  if (sent == SOCKET_ERROR) return WSAGetLastError();
  send_queue_.TookDirectly(bytes.size());
  return 0;
}

// Offers the bytes to the system, which takes some, all, or none for the moment.
WinsockControl::Taken WinsockControl::SendNow(std::string_view bytes) {
  const auto count = static_cast<int>(std::min<std::size_t>(bytes.size(), std::numeric_limits<int>::max()));
  const int sent = send(socket_.get(), bytes.data(), count, 0);
  if (sent != SOCKET_ERROR) return {0, static_cast<std::size_t>(sent)};
  const int error = WSAGetLastError();
  return {error == WSAEWOULDBLOCK ? 0 : error, 0};
}

}  // namespace kesp
