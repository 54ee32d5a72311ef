// How the library goes through rates, addresses and commands.
#include "console/detection_plan.h"

#include <algorithm>
#include <array>

namespace kesp::console {
namespace {

// A level is the number of commands that count. The last one is for old, slow instruments.
constexpr std::array<const char*, 3> kCommands = {"*IDN?", "*VER", "t"};
constexpr std::size_t kSlowCommand = 2;
constexpr int kFirstFastRate = 4800;

std::size_t CommandsOf(DetectLevel level) {
  return static_cast<std::size_t>(level);
}

}  // namespace

DetectionPlan DetectionPlan::OfRates(int present, const std::vector<int>& rates, DetectLevel level) {
  std::vector<int> order = {present};
  std::copy_if(rates.rbegin(), rates.rend(), std::back_inserter(order),
               [&](int rate) { return rate != present; });
  DetectionPlan plan;
  for (const int rate : order) {
    for (std::size_t i = 0; i < CommandsOf(level); ++i) {
      if (i == kSlowCommand && rate >= kFirstFastRate) continue;
      plan.steps_.emplace_back(NameOfRate(rate), kCommands.at(i));
    }
  }
  return plan;
}

DetectionPlan DetectionPlan::OfHost(const std::string& host, DetectLevel level) {
  DetectionPlan plan;
  for (std::size_t i = 0; i < CommandsOf(level); ++i) plan.steps_.emplace_back(host, kCommands.at(i));
  return plan;
}

DetectionPlan DetectionPlan::OfDevices(int first, int last, DetectLevel level) {
  DetectionPlan plan;
  for (int address = first; address <= last; ++address) {
    for (std::size_t i = 0; i < CommandsOf(level); ++i)
      plan.steps_.emplace_back(NameOfDevice(address), kCommands.at(i));
  }
  return plan;
}

DetectionStep DetectionPlan::StepAt(const std::string& where, const std::string& command) const {
  const auto step = std::find(steps_.begin(), steps_.end(), std::pair(where, command));
  const int number = step == steps_.end() ? 0 : static_cast<int>(step - steps_.begin()) + 1;
  return {where, command, number, static_cast<int>(steps_.size())};
}

}  // namespace kesp::console
