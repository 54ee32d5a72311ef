// A run of one cell: the time of its call, and what the promises come to.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "tests/hangs/cell.h"
#include "tests/hangs/outcome.h"

namespace kesp::hangs {

// Stands in everything that comes before a command, so that it is known again in a reply.
inline constexpr char kStale[] = "OLD";

class Trial {
 public:
  explicit Trial(const Cell& cell) : cell_(cell) {}

  // A text that no other command has.
  std::string NewToken();

  // Waits until a second of the calendar begins: waits that count those are at their longest then.
  void AwaitFullSecond() const;

  // Runs the call and takes its time. What it came to is judged by the cell.
  Outcome Call(const std::function<Outcome()>& call);
  // Such an event, or the end that was put to a wait, if the cell's limit counts from it. From any thread.
  void CountFromNow();
  // The call has shown a box, at which its time ends: the rest is the user's. From any thread.
  void EndAtBox() { shown_at_ = Clock::now().time_since_epoch().count(); }

  // The reply to a command with that token: nothing that came before the command is in it.
  void JudgeReply(const Outcome& outcome, const std::string& token);
  // The same where the reference says that it may be so.
  void NoteAnnouncedReply(const Outcome& outcome);
  // A correct query of the same object, after the fault.
  void JudgeQuery(const Outcome& outcome, const std::string& reply);
  // A step of it that must succeed.
  void Require(const std::string& step, bool done);

  // By how much the limit was exceeded; negative when it was kept.
  Milliseconds excess() const;
  bool was_timed() const { return was_timed_; }
  const std::vector<std::string>& failures() const { return failures_; }
  bool is_stale() const { return is_stale_; }
  bool is_announced() const { return is_announced_; }
  bool is_dead() const { return is_dead_; }
  void Fail(const std::string& failure) { failures_.push_back(failure); }

 private:
  const Cell& cell_;
  Clock::time_point began_;
  Clock::time_point returned_;
  std::atomic<Clock::rep> event_at_ = 0;
  std::atomic<Clock::rep> shown_at_ = 0;
  std::vector<std::string> failures_;
  bool was_timed_ = false;
  bool is_stale_ = false;
  bool is_announced_ = false;
  bool is_dead_ = false;
};

// Plays the cell; what its stage throws is a failure of it.
void Play(Trial& trial, const Cell& cell);

}  // namespace kesp::hangs
