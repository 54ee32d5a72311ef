// An instrument behind a COM port that misbehaves on demand, in the program that tests it.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "tests/clients/serial_wire.h"
#include "tests/hangs/cell.h"

namespace kesp::hangs {

class SerialPeer;

// The line in the hands of a way to behave. Each call returns false when the peer is to behave in another
// one.
class LineTalk {
 public:
  LineTalk(SerialPeer& peer, clients::SerialWire& wire) : peer_(peer), wire_(wire) {}

  void Begin(unsigned way) { way_ = way; }

  // Waits for a command, without its carriage return.
  bool Command(std::string& command) { return Until("\r", command); }
  bool Command() {
    std::string ignored;
    return Command(ignored);
  }
  // Waits until these bytes have come; `before` is what came before them.
  bool Until(const std::string& bytes, std::string& before);
  bool Send(const std::string& bytes);
  bool Pause(Milliseconds time);
  // The port is pulled out.
  void Pull();

  // What came in of a command is none.
  void Forget() { received_.clear(); }
  bool GoesOn() const;

 private:
  SerialPeer& peer_;
  clients::SerialWire& wire_;
  unsigned way_ = 0;
  std::string received_;
};

// Well, it answers each command with "=", the command, carriage return and line feed.
class SerialPeer {
 public:
  using Way = std::function<void(LineTalk&)>;

  SerialPeer();
  ~SerialPeer();
  SerialPeer(const SerialPeer&) = delete;
  SerialPeer& operator=(const SerialPeer&) = delete;

  void Behave(Way way);
  // Also plugs the port in again, and takes what is sent.
  void Recover();

  // The line fills up.
  void StopTaking() { wire_.PauseReading(); }
  void TakeAgain() { wire_.ResumeReading(); }

 private:
  friend class LineTalk;

  void Run();

  clients::SerialWire wire_;
  std::mutex mutex_;
  Way way_;
  std::atomic<unsigned> present_ = 1;
  std::atomic<bool> ending_ = false;
  std::atomic<bool> pulled_ = false;
  std::atomic<bool> recovering_ = false;
  std::thread thread_;
};

}  // namespace kesp::hangs
