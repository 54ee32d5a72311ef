// What the unit tests of the serial transport share: the object with fakes, and a check of refused values.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "serial/com_port_dialog_fake.h"
#include "serial/com_port_events_fake.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_control_fake.h"
#include "support/enumerations.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"
#include "support/text.h"

namespace kesp {

inline constexpr std::int16_t kLowest16 = std::numeric_limits<std::int16_t>::min();
inline constexpr std::int16_t kHighest16 = std::numeric_limits<std::int16_t>::max();
inline constexpr std::int32_t kLowest32 = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kHighest32 = std::numeric_limits<std::int32_t>::max();

template <typename Enumeration>
Enumeration As(std::int32_t value) {
  return static_cast<Enumeration>(value);
}

inline EKespBaudRate3 Rate(std::int32_t value) {
  return As<EKespBaudRate3>(value);
}

// Every setting of an object, to show what a call changed and what it left.
class Settings {
 public:
  explicit Settings(const CKespCOMPort3& port);

  bool operator==(const Settings& other) const;

 private:
  struct Values;
  std::shared_ptr<const Values> values_;
};

class CKespCOMPort3Test : public testing::Test {
 protected:
  CKespCOMPort3Test();
  ~CKespCOMPort3Test() override;

  // A range and a rate, set in the order that a new object asks for.
  void AllowRates(std::int32_t lowest, std::int32_t highest, std::int32_t rate);

  // Expects that set(value) throws this failure and changes no setting.
  template <typename Setter, typename Value>
  void ExpectRefused(Setter set, Value value, std::int32_t number, const wchar_t* source,
                     const wchar_t* description) {
    ExpectRefused([this, set, value] { (port_.*set)(value); }, static_cast<std::int64_t>(value),
                  Raised{number, source, description});
  }

  EnvironmentFake environment_;
  CKespCOMPort3EventsFake events_;
  ComPortDialogFake dialog_;
  SerialPortsFake ports_{environment_.clock};
  CKespCOMPort3 port_{environment_.environment, ports_, &events_, &dialog_};

 private:
  void ExpectRefused(const std::function<void()>& set, std::int64_t value, const Raised& failure);
};

// The stage of the tests of the operations: 9600 baud allowed, each look at the clock takes a millisecond,
// and one record of the control's calls, the events and the log's lines ("Log ..."), in the order they
// happen.
class SerialConversationTest : public CKespCOMPort3Test {
 protected:
  SerialConversationTest();

  // The port is released after what its listeners write to.
  ~SerialConversationTest() override;

  // Opens the port and forgets what was recorded so far.
  void Open();

  // Turns the log on; LogLines() are the messages in it.
  void StartLog();
  Lines LogLines() const;
  // The bytes written to the line, one entry for each time.
  Lines Outputs() const;
  // The events that were raised.
  Lines Events() const;

  std::int32_t Now() const;

  Lines record_;

 private:
  // The recorded lines that begin so, without their first characters.
  Lines Recorded(const std::wstring& beginning, std::size_t dropped) const;
};

}  // namespace kesp
