// The log of what comes in over a serial line.
#include "simulator/line_log.h"

#include "simulator/bytes_text.h"

namespace kesp::simulator {
namespace {

// Silence after which bytes count as all there is for now.
constexpr std::chrono::milliseconds kSilence(200);
// So that a line of the log stays readable by programs, however much comes without a pause.
constexpr std::size_t kMost = 4096;

}  // namespace

LineLog::LineLog(Carrier& carrier, EventLog& log, unsigned number)
    : carrier_(carrier), log_(log), number_(number) {}

void LineLog::Add(std::string_view bytes) {
  const std::optional<LineSettings> settings = carrier_.Line();
  if (!log_.on() || !settings) return;
  // Bytes stand in the log under the settings at which they came.
  if (settings != settings_) {
    Write();
    settings_ = settings;
    news_ = true;
  }
  received_ += bytes;
  if (received_.size() >= kMost) Write();
}

void LineLog::Write() {
  if (received_.empty()) return;
  if (news_) log_.Line(number_, "line " + TextOf(*settings_));
  news_ = false;
  log_.Line(number_, "received " + Quoted(received_, received_.size()));
  received_.clear();
}

void LineLog::Finish() {
  Add(carrier_.Rest());
  Write();
}

std::chrono::milliseconds LineLog::patience() const {
  return received_.empty() ? kForever : kSilence;
}

}  // namespace kesp::simulator
