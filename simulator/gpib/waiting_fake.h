// A lock and clock for tests with one thread, which play the others.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "simulator/gpib/time_out.h"
#include "simulator/gpib/waiting.h"

namespace kesp::simulator::gpib {

// Time passes by waiting only. Taking the lock twice is a failure of the test.
class WaitingFake final : public Waiting {
 public:
  void Lock() override {
    EXPECT_FALSE(is_locked_) << "the lock is taken twice";
    is_locked_ = true;
  }
  void Unlock() override { is_locked_ = false; }
  std::int64_t Microseconds() override { return now_; }

  void WaitUntil(std::int64_t microseconds) override {
    EXPECT_TRUE(is_locked_) << "waits without the lock";
    ++waits_;
    if (!meanwhile_.empty()) {
      const std::function<void()> act = std::move(meanwhile_.front());
      meanwhile_.erase(meanwhile_.begin());
      is_locked_ = false;
      act();
      is_locked_ = true;
      return;
    }
    if (microseconds == kNever) throw std::runtime_error("waits for ever");
    now_ = microseconds;
  }
  void WakeAll() override { ++wakes_; }

  // What another thread does during the next wait, which it ends; time stands still unless it says otherwise.
  void Meanwhile(std::function<void()> act) { meanwhile_.push_back(std::move(act)); }
  void Advance(std::int64_t microseconds) { now_ += microseconds; }

  int waits() const { return waits_; }
  int wakes() const { return wakes_; }

 private:
  bool is_locked_ = false;
  std::int64_t now_ = 1'000'000;
  std::vector<std::function<void()>> meanwhile_;
  int waits_ = 0;
  int wakes_ = 0;
};

}  // namespace kesp::simulator::gpib
