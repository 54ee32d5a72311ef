// Time and judgement of a cell.
#include "tests/hangs/trial.h"

#include <algorithm>
#include <exception>

#include "support/clock_win.h"

namespace kesp::hangs {

namespace {

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Printable, and short enough for a line.
std::string Shown(const std::string& bytes) {
  constexpr std::size_t kMost = 60;
  std::string shown;
  for (const char byte : bytes.substr(0, kMost)) shown += byte >= ' ' && byte <= '~' ? byte : '.';
  return "\"" + shown + "\"" +
         (bytes.size() > kMost ? "... of " + std::to_string(bytes.size()) + " bytes" : "");
}

}  // namespace

std::string Trial::NewToken() {
  static int number = 1000;
  return "T" + std::to_string(++number);
}

void Trial::AwaitFullSecond() const {
  ClockWin clock;
  const int sleep = 985 - clock.MillisecondOfSecond();
  if (sleep > 0) Sleep(static_cast<DWORD>(sleep));
  while (clock.MillisecondOfSecond() > 500) {
  }
}

Outcome Trial::Call(const std::function<Outcome()>& call) {
  event_at_ = 0;
  shown_at_ = 0;
  began_ = Clock::now();
  const Outcome outcome = call();
  returned_ = Clock::now();
  was_timed_ = true;
  const auto& specified = cell_.specified;
  if (std::find(specified.begin(), specified.end(), outcome.result) == specified.end()) {
    Fail(outcome.result + ", which is not specified");
  }
  if (!cell_.without_limit.empty() && event_at_ == 0) Fail("it came back before the wait was put an end to");
  return outcome;
}

void Trial::CountFromNow() {
  const bool counts = cell_.counts_from_event || !cell_.without_limit.empty();
  if (counts) event_at_ = Clock::now().time_since_epoch().count();
}

void Trial::JudgeReply(const Outcome& outcome, const std::string& token) {
  if (Contains(outcome.reply, kStale)) {
    is_stale_ = true;
    Fail("the reply " + Shown(outcome.reply) + " holds what came before the command");
  } else if (outcome.result == "True" && !token.empty() && !Contains(outcome.reply, token)) {
    Fail("the reply " + Shown(outcome.reply) + " is not that of " + token);
  }
}

void Trial::NoteAnnouncedReply(const Outcome& outcome) {
  if (Contains(outcome.reply, kStale)) is_announced_ = true;
}

void Trial::JudgeQuery(const Outcome& outcome, const std::string& reply) {
  if (Contains(outcome.reply, kStale)) is_stale_ = true;
  if (outcome.result == "True" && outcome.reply == reply) return;
  is_dead_ = true;
  Fail("afterwards " + outcome.result + " with " + Shown(outcome.reply) + " in place of " + Shown(reply));
}

void Trial::Require(const std::string& step, bool done) {
  if (done) return;
  is_dead_ = true;
  Fail("afterwards " + step + " fails");
}

Milliseconds Trial::excess() const {
  const Clock::time_point event{Clock::duration{event_at_.load()}};
  const Clock::time_point shown{Clock::duration{shown_at_.load()}};
  const Clock::time_point end = shown_at_ != 0 ? shown : returned_;
  return std::chrono::duration_cast<Milliseconds>(end - std::max(began_, event)) - cell_.limit;
}

void Play(Trial& trial, const Cell& cell) {
  try {
    cell.play(trial);
    if (!trial.was_timed()) trial.Fail("the call was not made");
  } catch (const std::exception& error) {
    trial.Fail(std::string("the stage: ") + error.what());
  }
}

}  // namespace kesp::hangs
