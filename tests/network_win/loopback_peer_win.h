// The other side of a test's connection: a thread of this process with a blocking socket.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "network/winsock_library_win.h"

namespace kesp {

// Listens on the loopback interface, on a port below 32768, from its construction on. Its thread accepts
// connections and runs the conversation with each, then closes it. Ends, at the latest, some seconds after
// nobody connects any more; the destructor waits for it.
class LoopbackPeer {
 public:
  using Conversation = std::function<void(SOCKET connection)>;

  explicit LoopbackPeer(Conversation conversation, int connections = 1);
  ~LoopbackPeer();
  LoopbackPeer(const LoopbackPeer&) = delete;
  LoopbackPeer& operator=(const LoopbackPeer&) = delete;

  int port() const { return port_; }

 private:
  void Run(const Conversation& conversation, int connections);

  WinsockLibrary library_;
  SOCKET listener_;
  int port_;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

// A socket of that type bound to a free loopback port below 32768; the port goes into `port`.
SOCKET BindToLoopback(int type, int& port);

// A loopback port below 32768 on which nobody listens.
int ClosedPort();

// Whether something can be read within the time.
bool WaitReadable(SOCKET socket, int milliseconds);

// Sends everything; false when the connection ended.
bool SendAll(SOCKET socket, const std::string& bytes);

// Receives until that byte came or the connection ended.
std::string ReceiveUntil(SOCKET socket, char last);

// A conversation that sends the bytes, if any, and then waits until the other side closes.
LoopbackPeer::Conversation Sending(const std::string& bytes = {});

// Makes closing the socket reset the connection.
void ResetOnClose(SOCKET socket);

}  // namespace kesp
