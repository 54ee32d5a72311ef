// The conversation of a device with the client of its serial line.
#include "simulator/device_talk.h"

#include <algorithm>
#include <system_error>

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

// Rounded down, so that the device never sees a moment before its time.
Moment Now() {
  return std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace

DeviceTalk::DeviceTalk(Carrier& carrier, Device& device, EventLog& log, unsigned number)
    : carrier_(carrier), device_(device), log_(log), number_(number), line_log_(carrier, log, number) {}

asio::awaitable<void> DeviceTalk::Run() {
  log_.Line(number_, carrier_.Opening());
  try {
    co_await Exchange();
  } catch (const std::system_error& error) {
    log_.Line(number_, "client gone: " + error.code().message());
  }
}

asio::awaitable<void> DeviceTalk::Exchange() {
  co_await Answer({});
  for (;;) {
    const Arrival arrival = co_await carrier_.Receive(Patience());
    if (arrival.what == Arrived::kEnd) {
      log_.Line(number_, "closed by the client");
      co_return;
    }
    if (arrival.what == Arrived::kNothing) {
      line_log_.Write();
      co_await Answer({});
      continue;
    }
    line_log_.Add(arrival.bytes);
    if (LineSuits()) {
      co_await Answer(arrival.bytes);
      continue;
    }
    line_log_.Write();
    log_.Line(number_, "garbled: the device's line is " + TextOf(*device_.Line()));
    co_await carrier_.Send(kGarbage);
  }
}

asio::awaitable<void> DeviceTalk::Answer(std::string_view bytes) {
  const Deeds deeds = device_.Take(bytes, Now());
  if (!deeds.events.empty() || !deeds.bytes.empty()) line_log_.Write();
  for (const std::string& event : deeds.events) log_.Line(number_, event);
  if (deeds.bytes.empty()) co_return;
  if (log_.on()) log_.Line(number_, "reply " + Quoted(deeds.bytes, deeds.bytes.size()));
  co_await carrier_.Send(deeds.bytes);
}

bool DeviceTalk::LineSuits() const {
  const std::optional<LineSettings> line = carrier_.Line();
  const std::optional<LineRule> rule = device_.Line();
  return !line || !rule || Suits(*rule, *line);
}

std::chrono::milliseconds DeviceTalk::Patience() const {
  const std::optional<Moment> due = device_.Due();
  if (!due) return line_log_.patience();
  return std::min(line_log_.patience(), std::max(*due - Now(), std::chrono::milliseconds(0)));
}

}  // namespace kesp::simulator
