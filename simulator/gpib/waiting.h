// The seam between the simulated driver and the system: its lock, its clock, and waiting.
#pragma once

#include <cstdint>

namespace kesp::simulator::gpib {

class Waiting {
 public:
  virtual ~Waiting() = default;

  // The one lock behind which everything lies; a thread that has it may not take it again.
  virtual void Lock() = 0;
  virtual void Unlock() = 0;

  // Microseconds since some fixed moment; never goes back.
  virtual std::int64_t Microseconds() = 0;

  // Waits until that moment or until WakeAll, without the lock meanwhile; for ever when it is kNever. May
  // return early.
  virtual void WaitUntil(std::int64_t microseconds) = 0;
  virtual void WakeAll() = 0;
};

// Has the lock for as long as it lives.
class Locked {
 public:
  explicit Locked(Waiting& waiting) : waiting_(waiting) { waiting_.Lock(); }
  ~Locked() { waiting_.Unlock(); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  Waiting& waiting_;
};

}  // namespace kesp::simulator::gpib
