// A simulated driver with a clock of the test's own, and short words for what a client does with it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "simulator/description.h"
#include "simulator/gpib/driver.h"
#include "simulator/gpib/waiting_fake.h"

namespace kesp::simulator::gpib {

// The client is thread 11, which is registered.
class DriverFixture : public testing::Test {
 protected:
  static constexpr ThreadId kClient = 11;
  static constexpr std::int32_t kTenSeconds = 13;
  static constexpr std::int32_t kThreeMilliseconds = 6;

  DriverFixture() { Load("{}"); }

  void Load(const std::string& json) {
    driver_.Load(ReadBus(json));
    driver_.Register(kClient, Cells{&status_, &error_, &count_, &long_count_});
  }

  std::int32_t Open(std::int32_t primary, std::int32_t secondary = 0, std::int32_t time_out = kTenSeconds,
                    std::int32_t sends_end = 1, std::int32_t end_of_string = 0) {
    return driver_.Ibdev(kClient, {0, {primary, secondary}, time_out, sends_end, end_of_string});
  }
  std::int32_t Write(std::int32_t descriptor, const std::string& bytes) {
    return driver_.Ibwrt(kClient, descriptor, bytes.data(), static_cast<std::int32_t>(bytes.size()));
  }
  // What one read brought, however it ended.
  std::string Read(std::int32_t descriptor, std::size_t length = 100) {
    std::string buffer(length, ' ');
    driver_.Ibrd(kClient, descriptor, buffer.data(), static_cast<std::int32_t>(length));
    EXPECT_EQ(count_, long_count_);
    return buffer.substr(0, static_cast<std::size_t>(count_));
  }
  // What came of the last call, as the client's cells say.
  Outcome Last() const { return {status_, error_, count_}; }

  static Outcome TimedOut(std::int32_t count = 0) {
    return {kError | kTimedOut | kComplete, kAborted, count};
  }
  // The last line of the record.
  std::string LastLine() {
    const std::string record = driver_.Record();
    return record.substr(record.rfind('\n', record.size() - 2) + 1);
  }

  WaitingFake waiting_;
  Driver driver_{waiting_};
  std::int32_t status_ = -1;
  std::int32_t error_ = -1;
  std::int32_t count_ = -1;
  std::int32_t long_count_ = -1;
};

}  // namespace kesp::simulator::gpib
