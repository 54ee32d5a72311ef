// The talk of a device with one client, whatever carries it.
#include "simulator/talk.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

constexpr std::size_t kHeadLength = 64;

}  // namespace

Talk::Talk(Carrier& carrier, Device& device, EventLog& log, unsigned number)
    : carrier_(carrier), device_(device), log_(log), number_(number), line_log_(carrier, log, number) {}

asio::awaitable<void> Talk::Run() {
  log_.Line(number_, carrier_.Opening());
  try {
    for (bool goes_on = true; goes_on;) {
      goes_on = co_await Act();
      if (goes_on) goes_on = co_await Wait();
    }
  } catch (const std::system_error& error) {
    LogSent(" before the client was gone");
    Note("client gone: " + error.code().message());
  }
}

asio::awaitable<bool> Talk::Act() {
  for (std::optional<Deed> deed = device_.Next(Now()); deed; deed = device_.Next(Now())) {
    if (!deed->event.empty()) Note(deed->event);
    co_await Do(deed->step);
    if (!deed->step.ending) continue;
    Note(*deed->step.ending == Ending::kClose ? "closed by the instrument" : "reset by the instrument");
    carrier_.End(*deed->step.ending);
    co_return false;
  }
  if (device_.Listens()) LogSent("");
  co_return true;
}

asio::awaitable<void> Talk::Do(const Step& step) {
  if (step.bytes.empty()) co_return;
  line_log_.Write();
  if (step.flood) {
    const std::size_t taken = co_await carrier_.SendEndlessly(step.bytes, *step.flood);
    Count(step.bytes, taken);
    co_return;
  }
  for (std::size_t i = 0; i < step.times; ++i) {
    co_await carrier_.Send(step.bytes);
    Count(step.bytes, step.bytes.size());
  }
}

asio::awaitable<bool> Talk::Wait() {
  if (!device_.Listens()) {
    co_await carrier_.Pause(Patience());
    co_return true;
  }
  const Arrival arrival = co_await carrier_.Receive(Patience());
  if (arrival.what == Arrived::kEnd) Note("closed by the client");
  if (arrival.what == Arrived::kNothing) line_log_.Write();
  if (arrival.what == Arrived::kBytes) co_await Hear(arrival.bytes);
  co_return arrival.what != Arrived::kEnd;
}

asio::awaitable<void> Talk::Hear(std::string_view bytes) {
  line_log_.Add(bytes);
  const std::optional<LineSettings> line = carrier_.Line();
  const std::optional<LineRule> rule = device_.Line();
  if (!line || !rule || Suits(*rule, *line)) {
    device_.Take(bytes, Now());
    co_return;
  }
  Note("garbled: the device's line is " + TextOf(*rule));
  co_await carrier_.Send(kGarbage);
}

// Rounded up here and down below, so that no pause is too short.
Moment Talk::Now() const {
  return std::chrono::ceil<Moment>(carrier_.Now());
}

std::chrono::milliseconds Talk::Patience() const {
  const std::optional<Moment> due = device_.Due();
  const std::chrono::milliseconds quiet = line_log_.patience();
  return due ? std::min(quiet, std::max(*due - std::chrono::floor<Moment>(carrier_.Now()),
                                        std::chrono::milliseconds(0)))
             : quiet;
}

void Talk::Note(const std::string& text) {
  LogSent("");
  line_log_.Write();
  log_.Line(number_, text);
}

void Talk::Count(std::string_view bytes, std::size_t total) {
  const std::size_t room = kHeadLength - std::min(kHeadLength, sent_.head.size());
  sent_.head += bytes.substr(0, std::min(room, total));
  sent_.bytes += total;
  sent_.pieces += 1;
}

void Talk::LogSent(const std::string& suffix) {
  const Sent sent = std::exchange(sent_, Sent{});
  if (!log_.on() || sent.pieces == 0) return;
  log_.Line(number_, "reply " + Quoted(sent.head) + " (" + Counted(sent.bytes, "byte") + ", " +
                         Counted(sent.pieces, "piece") + ")" + suffix);
}

}  // namespace kesp::simulator
