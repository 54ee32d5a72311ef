// The other end of a COM port, played by the test program itself.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace kesp::clients {

// A connection to the wire that stands behind the COM port of this test (tools/with-serial-line --wire). The
// port exists while the connection does. A thread of its own takes what the port's user writes, and gives the
// answers that were agreed upon; the methods are for one other thread. Throws std::runtime_error where the
// wire does not do its part.
class SerialWire {
 public:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::milliseconds;

  // What is sent when certain bytes have arrived, in one or several pieces.
  class Answer {
   public:
    // A piece of the answer, sent as soon as the piece before it.
    Answer& Reply(std::string bytes);
    // The time from the arrival, or from the piece before, to the piece last named.
    Answer& After(Milliseconds delay);

   private:
    friend class SerialWire;
    struct Piece {
      std::string bytes;
      Milliseconds delay;
    };
    Answer(std::mutex& mutex, std::string trigger) : mutex_(mutex), trigger_(std::move(trigger)) {}

    std::mutex& mutex_;
    std::string trigger_;
    std::vector<Piece> pieces_;
  };

  static constexpr Milliseconds kDeadline{10000};

  // Connects; the port is there afterwards.
  SerialWire();
  // Pulls the port, but does not wait until it is gone.
  ~SerialWire();
  SerialWire(const SerialWire&) = delete;
  SerialWire& operator=(const SerialWire&) = delete;

  // The number of the COM port, and its name as CreateFile takes it.
  static int PortNumber();
  static std::wstring PortName();

  // The line's user receives them; throws when they are not taken by the deadline.
  void Send(std::string_view bytes);

  // Takes `count` bytes of those that arrived; fewer when the rest has not come by the deadline.
  std::string Receive(std::size_t count, Milliseconds deadline = kDeadline);
  // Takes all that arrives until nothing came for that time.
  std::string ReceiveUntilQuiet(Milliseconds quiet = Milliseconds(200));

  // Each time the bytes have arrived, though in several pieces, the answer is sent. Bytes that called for an
  // answer do not count for the next one.
  Answer& OnBytes(std::string bytes);

  // While the wire reads nothing, the line fills up and its user's writes come to a stop.
  void PauseReading() { reading_ = false; }
  void ResumeReading() { reading_ = true; }

  // Takes the port away, as when an adapter is pulled, and waits until its name is gone. Its user's handle
  // stays.
  void Pull();
  // Brings it back after Pull; answers stay agreed.
  void Reconnect();

 private:
  struct Due {
    Clock::time_point time;
    std::string bytes;
  };

  void Connect();
  void Disconnect();
  void Run();
  void Take(std::string_view bytes);
  void ScheduleAnswers();
  bool SendWhatIsDue();
  bool SendAll(std::string_view bytes) const;

  SOCKET socket_ = INVALID_SOCKET;
  std::thread thread_;
  std::atomic<bool> ending_ = false;
  std::atomic<bool> reading_ = true;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::string untaken_;
  // What arrived since the last answer.
  std::string unanswered_;
  std::deque<Answer> answers_;
  std::deque<Due> due_;
};

}  // namespace kesp::clients
