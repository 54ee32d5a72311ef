// An instrument over TCP that misbehaves on demand, in the program that tests it.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "network/winsock_library_win.h"
#include "tests/hangs/cell.h"

namespace kesp::hangs {

// One connection in the hands of a way to behave. Each call returns false when the way is over: the
// connection is gone, or the peer is to behave in another one.
class Talk {
 public:
  // Ways have numbers; `present` is the one that is in force.
  Talk(SOCKET connection, const std::atomic<unsigned>& present)
      : connection_(connection), present_(present) {}

  void Begin(unsigned way) { way_ = way; }

  // Waits for a command, without its carriage return.
  bool Command(std::string& command);
  bool Command() {
    std::string ignored;
    return Command(ignored);
  }
  bool Send(const std::string& bytes);
  bool Pause(Milliseconds time);
  // The connection is closed, or reset, at the end of the way.
  void Close() { is_over_ = true; }
  void Reset();

  bool IsOver() const { return is_over_; }
  bool GoesOn() const { return way_ == present_ && !is_over_; }

 private:
  SOCKET connection_;
  const std::atomic<unsigned>& present_;
  unsigned way_ = 0;
  std::string received_;
  bool is_over_ = false;
};

// Listens on an address of this machine. Well, it answers each command with "=", the command and a carriage
// return. A connection lives on when the peer becomes ill or well, unless its way closes it.
class HangingPeer {
 public:
  using Way = std::function<void(Talk&)>;

  // On a free port below 32768, unless one is given.
  explicit HangingPeer(std::string address = "127.0.0.1", int port = 0);
  ~HangingPeer();
  HangingPeer(const HangingPeer&) = delete;
  HangingPeer& operator=(const HangingPeer&) = delete;

  const std::string& address() const { return address_; }
  short port() const { return static_cast<short>(port_); }

  // Connections behave so from now on, those that are open included.
  void Behave(Way way);
  void Recover();

  // Nobody listens: connections are refused. Recover ends it.
  void Refuse();
  // Requests for a connection are not answered. Recover ends it.
  void IgnoreConnections();

 private:
  void Listen(int backlog);
  void StopListening();
  void Accept();
  void Converse(SOCKET connection);

  WinsockLibrary library_;
  std::string address_;
  int port_;
  SOCKET listener_ = INVALID_SOCKET;
  std::vector<SOCKET> fillers_;
  std::atomic<bool> ending_ = false;
  std::atomic<bool> not_listening_ = false;
  std::mutex mutex_;
  Way way_;
  // Counts the ways.
  std::atomic<unsigned> present_ = 1;
  std::thread acceptor_;
  std::vector<std::thread> conversations_;
};

}  // namespace kesp::hangs
