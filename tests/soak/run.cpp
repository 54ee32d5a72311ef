// The loop over the tenths, and its progress every few seconds.
#include "tests/soak/run.h"

#include <cmath>
#include <stdexcept>

#include "bench/measure.h"
#include "tests/soak/resources_win.h"
#include "tests/soak/tenths.h"

namespace kesp::soak {

namespace {

void Say(std::FILE* out, const std::string& line) {
  std::fprintf(out, "%s\n", line.c_str());
  std::fflush(out);
}

class Progress {
 public:
  Progress(std::string name, long count, std::FILE* out) : name_(std::move(name)), count_(count), out_(out) {}

  // Looks at the clock only now and then, since a query takes microseconds.
  void Tell(long done) {
    constexpr long kCallsPerLook = 16;
    constexpr double kSecondsPerLine = 5;
    if (done % kCallsPerLook != 0 || Seconds() - told_at_ < kSecondsPerLine) return;
    told_at_ = Seconds();
    const double rate = static_cast<double>(done) / told_at_;
    Say(out_, "-- " + name_ + ": " + std::to_string(done) + " of " + std::to_string(count_) + ", " +
                  std::to_string(std::lround(rate)) + "/s, " +
                  std::to_string(std::lround(static_cast<double>(count_ - done) / rate)) + " s left");
  }
  double Seconds() const { return bench::MicrosecondsNow() / 1e6 - start_; }

 private:
  std::string name_;
  long count_;
  std::FILE* out_;
  double start_ = bench::MicrosecondsNow() / 1e6;
  double told_at_ = 0;
};

void DoOnce(Part& part, long number, long index, long calls) {
  try {
    part.Do(number, index, calls);
  } catch (const std::exception& error) {
    throw std::runtime_error("number " + std::to_string(number + 1) + ": " + error.what());
  }
}

}  // namespace

bool Run(const std::string& name, Part& part, long count, std::FILE* out) {
  const long calls = count / kTenths;
  std::vector<Tenth> tenths;
  tenths.reserve(kTenths);
  Say(out, "-- " + name);
  Say(out, TableHead());
  Progress progress(name, count, out);
  for (int number = 1; number <= kTenths; ++number) {
    const double start = progress.Seconds();
    for (long index = 0; index < calls; ++index) {
      const long done = (number - 1) * calls + index;
      DoOnce(part, done, index, calls);
      progress.Tell(done + 1);
    }
    part.Rest();
    const double seconds = progress.Seconds() - start;
    tenths.push_back(
        {.resources = ReadResources(), .lost_by_system = part.LostBySystem(), .seconds = seconds});
    Say(out, TableRow(number, tenths.back(), calls));
  }
  for (const std::string& line : Figures(name, count, tenths)) Say(out, line);
  const std::vector<std::string> grown = Grown(tenths);
  for (const std::string& line : grown) Say(out, name + ": " + line);
  if (grown.empty()) Say(out, name + ": every reply right, nothing grew");
  return grown.empty();
}

}  // namespace kesp::soak
