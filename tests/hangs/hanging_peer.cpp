// The peer's threads: one accepts, and each connection has one.
#include "tests/hangs/hanging_peer.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/network_win/loopback_peer_win.h"

namespace kesp::hangs {

namespace {

constexpr int kPollMilliseconds = 10;
constexpr int kFirstPort = 20000;
constexpr int kPorts = 12000;

bool WaitWritable(SOCKET socket, int milliseconds) {
  fd_set writable;
  FD_ZERO(&writable);
  FD_SET(socket, &writable);
  timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, nullptr, &writable, nullptr, &time) == 1;
}

sockaddr_in Name(const std::string& address, int port) {
  sockaddr_in name{};
  name.sin_family = AF_INET;
  name.sin_port = htons(static_cast<u_short>(port));
  name.sin_addr.s_addr = inet_addr(address.c_str());
  return name;
}

bool Bind(SOCKET socket, const std::string& address, int port) {
  // What is left of earlier connections does not matter.
  const BOOL reuse = TRUE;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&reuse), sizeof reuse);
  const sockaddr_in name = Name(address, port);
  return bind(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name) == 0;
}

int FreePort() {
  int port = 0;
  closesocket(BindToLoopback(SOCK_STREAM, port));
  return port;
}

void Well(Talk& talk) {
  std::string command;
  while (talk.Command(command) && talk.Send("=" + command + "\r")) {
  }
}

void DoNotBlock(SOCKET socket) {
  u_long on = 1;
  ioctlsocket(socket, FIONBIO, &on);
}

}  // namespace

bool Talk::Command(std::string& command) {
  while (GoesOn()) {
    const std::size_t end = received_.find('\r');
    if (end != std::string::npos) {
      command = received_.substr(0, end);
      received_.erase(0, end + 1);
      return true;
    }
    if (!WaitReadable(connection_, kPollMilliseconds)) continue;
    std::string piece(65536, '\0');
    const int count = recv(connection_, piece.data(), static_cast<int>(piece.size()), 0);
    if (count > 0) {
      received_.append(piece, 0, static_cast<std::size_t>(count));
    } else if (count == 0 || WSAGetLastError() != WSAEWOULDBLOCK) {
      is_over_ = true;
    }
  }
  return false;
}

bool Talk::Send(const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    if (!GoesOn()) return false;
    if (!WaitWritable(connection_, kPollMilliseconds)) continue;
    const int count = send(connection_, bytes.data() + done, static_cast<int>(bytes.size() - done), 0);
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (WSAGetLastError() != WSAEWOULDBLOCK) {
      is_over_ = true;
    }
  }
  return GoesOn();
}

bool Talk::Pause(Milliseconds time) {
  const Clock::time_point end = Clock::now() + time;
  while (GoesOn() && Clock::now() < end) std::this_thread::sleep_for(Milliseconds(kPollMilliseconds));
  return GoesOn();
}

void Talk::Reset() {
  ResetOnClose(connection_);
  is_over_ = true;
}

HangingPeer::HangingPeer(std::string address, int port)
    : address_(std::move(address)), port_(port != 0 ? port : FreePort()), way_(Well) {
  Listen(5);
}

HangingPeer::~HangingPeer() {
  ending_ = true;
  ++present_;
  StopListening();
  for (std::thread& conversation : conversations_) conversation.join();
}

void HangingPeer::Behave(Way way) {
  const std::lock_guard locked(mutex_);
  way_ = std::move(way);
  ++present_;
}

void HangingPeer::Recover() {
  Behave(Well);
  if (!not_listening_) return;
  StopListening();
  Listen(5);
}

void HangingPeer::Refuse() {
  StopListening();
}

// The queue of a listener that accepts nobody has room for one; when that is taken, the system drops further
// requests.
void HangingPeer::IgnoreConnections() {
  StopListening();
  listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  if (!Bind(listener_, address_, port_) || listen(listener_, 0) != 0)
    throw std::runtime_error("no port to ignore");
  const sockaddr_in name = Name(address_, port_);
  for (int i = 0; i < 4; ++i) {
    const SOCKET filler = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    DoNotBlock(filler);
    connect(filler, reinterpret_cast<const sockaddr*>(&name), sizeof name);
    WaitWritable(filler, 100);
    fillers_.push_back(filler);
  }
}

void HangingPeer::Listen(int backlog) {
  listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  if (!Bind(listener_, address_, port_) || listen(listener_, backlog) != 0) {
    throw std::runtime_error("the peer cannot listen at " + address_ + ":" + std::to_string(port_));
  }
  not_listening_ = false;
  acceptor_ = std::thread([this] { Accept(); });
}

void HangingPeer::StopListening() {
  not_listening_ = true;
  if (acceptor_.joinable()) acceptor_.join();
  for (const SOCKET filler : std::exchange(fillers_, {})) {
    ResetOnClose(filler);
    closesocket(filler);
  }
  if (listener_ != INVALID_SOCKET) closesocket(std::exchange(listener_, INVALID_SOCKET));
}

void HangingPeer::Accept() {
  while (!not_listening_) {
    if (!WaitReadable(listener_, kPollMilliseconds)) continue;
    const SOCKET connection = accept(listener_, nullptr, nullptr);
    if (connection == INVALID_SOCKET) continue;
    conversations_.emplace_back([this, connection] { Converse(connection); });
  }
}

void HangingPeer::Converse(SOCKET connection) {
  DoNotBlock(connection);
  const BOOL at_once = TRUE;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&at_once), sizeof at_once);
  Talk talk(connection, present_);
  while (!ending_ && !talk.IsOver()) {
    Way way;
    {
      const std::lock_guard locked(mutex_);
      way = way_;
      talk.Begin(present_);
    }
    way(talk);
    while (talk.Pause(Milliseconds(1000))) {
    }
  }
  closesocket(connection);
}

}  // namespace kesp::hangs
