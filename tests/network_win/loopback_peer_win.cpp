// The blocking peer of the socket tests.
#include "tests/network_win/loopback_peer_win.h"

#include <stdexcept>
#include <utility>

namespace kesp {

namespace {

constexpr int kAcceptMilliseconds = 20;
constexpr int kReceiveMilliseconds = 10000;
constexpr int kFirstPort = 20000;
constexpr int kLastPort = 32767;

sockaddr_in Loopback(int port) {
  sockaddr_in name{};
  name.sin_family = AF_INET;
  name.sin_port = htons(static_cast<u_short>(port));
  name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return name;
}

SOCKET Listening(int& port) {
  const SOCKET listener = BindToLoopback(SOCK_STREAM, port);
  listen(listener, 5);
  return listener;
}

}  // namespace

SOCKET BindToLoopback(int type, int& port) {
  static int next_port = kFirstPort + static_cast<int>(GetCurrentProcessId() * 97 % (kLastPort - kFirstPort));
  const SOCKET bound = socket(AF_INET, type, 0);
  for (int tries = 0; tries < 1000; ++tries) {
    next_port = next_port < kLastPort ? next_port + 1 : kFirstPort;
    const sockaddr_in name = Loopback(next_port);
    if (bind(bound, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) continue;
    port = next_port;
    return bound;
  }
  throw std::runtime_error("no free loopback port");
}

int ClosedPort() {
  const WinsockLibrary library;
  int port = 0;
  closesocket(BindToLoopback(SOCK_STREAM, port));
  return port;
}

bool WaitReadable(SOCKET socket, int milliseconds) {
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(socket, &readable);
  timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, &readable, nullptr, nullptr, &time) == 1;
}

bool SendAll(SOCKET socket, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const int count = send(socket, bytes.data() + done, static_cast<int>(bytes.size() - done), 0);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

std::string ReceiveUntil(SOCKET socket, char last) {
  std::string received;
  std::string piece(65536, '\0');
  while (received.empty() || received.back() != last) {
    if (!WaitReadable(socket, kReceiveMilliseconds)) break;
    const int count = recv(socket, piece.data(), static_cast<int>(piece.size()), 0);
    if (count <= 0) break;
    received.append(piece, 0, static_cast<std::size_t>(count));
  }
  return received;
}

LoopbackPeer::Conversation Sending(const std::string& bytes) {
  return [bytes](SOCKET connection) {
    SendAll(connection, bytes);
    ReceiveUntil(connection, '\x04');
  };
}

void ResetOnClose(SOCKET socket) {
  const linger now{1, 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
}

LoopbackPeer::LoopbackPeer(Conversation conversation, int connections)
    : listener_(Listening(port_)), thread_([this, conversation = std::move(conversation), connections] {
        Run(conversation, connections);
      }) {}

LoopbackPeer::~LoopbackPeer() {
  ending_ = true;
  thread_.join();
  closesocket(listener_);
}

void LoopbackPeer::Run(const Conversation& conversation, int connections) {
  for (int i = 0; i < connections; ++i) {
    while (!WaitReadable(listener_, kAcceptMilliseconds)) {
      if (ending_) return;
    }
    const SOCKET connection = accept(listener_, nullptr, nullptr);
    if (connection == INVALID_SOCKET) return;
    conversation(connection);
    closesocket(connection);
  }
}

}  // namespace kesp
