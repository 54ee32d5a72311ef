// The thread that plays the instrument at the other end of the COM port.
#include "tests/hangs/serial_peer.h"

#include <utility>

namespace kesp::hangs {

namespace {

constexpr Milliseconds kPoll{5};
constexpr Milliseconds kQuiet{100};
constexpr std::size_t kMost = 65536;

// What stuck on the line before, x all of it and lone carriage returns, may come along with a command.
void Well(LineTalk& talk) {
  std::string command;
  while (talk.Command(command)) {
    command.erase(0, command.rfind('x') + 1);
    if (!command.empty()) talk.Send("=" + command + "\r\n");
  }
}

}  // namespace

bool LineTalk::GoesOn() const {
  return way_ == peer_.present_;
}

bool LineTalk::Until(const std::string& bytes, std::string& before) {
  while (GoesOn()) {
    const std::size_t found = received_.find(bytes);
    if (found != std::string::npos) {
      before = received_.substr(0, found);
      received_.erase(0, found + bytes.size());
      return true;
    }
    received_ += wire_.Receive(1, kPoll);
    received_ += wire_.Receive(kMost, Milliseconds(0));
  }
  return false;
}

bool LineTalk::Send(const std::string& bytes) {
  if (GoesOn()) wire_.Send(bytes);
  return GoesOn();
}

bool LineTalk::Pause(Milliseconds time) {
  const Clock::time_point end = Clock::now() + time;
  while (GoesOn() && Clock::now() < end) std::this_thread::sleep_for(kPoll);
  return GoesOn();
}

void LineTalk::Pull() {
  peer_.pulled_ = true;
  wire_.Pull();
}

SerialPeer::SerialPeer() : way_(Well), thread_([this] { Run(); }) {}

SerialPeer::~SerialPeer() {
  ending_ = true;
  ++present_;
  thread_.join();
}

void SerialPeer::Behave(Way way) {
  const std::lock_guard locked(mutex_);
  way_ = std::move(way);
  ++present_;
}

void SerialPeer::Recover() {
  TakeAgain();
  recovering_ = true;
  Behave(Well);
  while (recovering_) std::this_thread::sleep_for(kPoll);
}

void SerialPeer::Run() {
  LineTalk talk(*this, wire_);
  while (!ending_) {
    Way way;
    {
      const std::lock_guard locked(mutex_);
      way = way_;
      talk.Begin(present_);
    }
    if (recovering_) {
      if (pulled_) wire_.Reconnect();
      pulled_ = false;
      // What was on its way when the last way ended is no command.
      wire_.ReceiveUntilQuiet(kQuiet);
      talk.Forget();
      recovering_ = false;
    }
    way(talk);
    while (talk.Pause(Milliseconds(1000))) {
    }
  }
}

}  // namespace kesp::hangs
