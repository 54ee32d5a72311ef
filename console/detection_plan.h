// All that a detection can try, in its order.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "console/library.h"

namespace kesp::console {

class DetectionPlan {
 public:
  // rates: those that are allowed, in bits per second, from the lowest up. The present one is tried first,
  // then all from the highest down, and "t" below 4800 only.
  static DetectionPlan OfRates(int present, const std::vector<int>& rates, DetectLevel level);
  static DetectionPlan OfHost(const std::string& host, DetectLevel level);
  // Primary addresses on the GPIB.
  static DetectionPlan OfDevices(int first, int last, DetectLevel level);

  static std::string NameOfRate(int rate) { return std::to_string(rate) + " baud"; }
  static std::string NameOfDevice(int address) { return "gpib:" + std::to_string(address); }

  // The step about to be taken; number 0 where the plan does not have it.
  DetectionStep StepAt(const std::string& where, const std::string& command) const;

 private:
  std::vector<std::pair<std::string, std::string>> steps_;
};

}  // namespace kesp::console
