// What the unit tests of the serial transport share: the object with fakes, and a check of refused values.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "serial/com_port_dialog_fake.h"
#include "serial/com_port_events_fake.h"
#include "serial/kesp_com_port.h"
#include "serial/serial_control_fake.h"
#include "support/enumerations.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure.h"
#include "support/failure_fixture.h"

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

// Every setting of the object, to show what a call changed and what it left.
inline auto Settings(const CKespCOMPort3& port) {
  return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.DataBits(),
                    port.StopBits(), port.Parity(), port.ControllerStyle(), port.TimeOut(), port.StripCRLF(),
                    port.TerminateOnLF(), port.CheckNonAscii(), port.UseSmartSwitch(), port.UseIRDongle(),
                    port.UseRFModem(), port.InstrAddr(), port.RFModemPropHCID(), port.UseRedirector(),
                    port.CreateLogFile(), port.LogFilename(), port.GetKey(), port.SmartSwitch());
}

class CKespCOMPort3Test : public testing::Test {
 protected:
  // A range and a rate, set in the order that a new object asks for.
  void AllowRates(std::int32_t lowest, std::int32_t highest, std::int32_t rate) {
    port_.SetMaxBaudRate(Rate(highest));
    port_.SetMinBaudRate(Rate(lowest));
    port_.SetBaudRate(Rate(rate));
  }

  // Expects that set(value) throws this failure and changes no setting.
  template <typename Setter, typename Value>
  void ExpectRefused(Setter set, Value value, std::int32_t number, const wchar_t* source,
                     const wchar_t* description) {
    const auto before = Settings(port_);
    try {
      (port_.*set)(value);
      ADD_FAILURE() << "accepted " << static_cast<std::int64_t>(value);
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number(), number);
      EXPECT_EQ(failure.source(), source);
      EXPECT_EQ(failure.description(), description);
    }
    EXPECT_TRUE(Settings(port_) == before) << static_cast<std::int64_t>(value);
  }

  EnvironmentFake environment_;
  CKespCOMPort3EventsFake events_;
  ComPortDialogFake dialog_;
  SerialPortsFake ports_{environment_.clock};
  CKespCOMPort3 port_{environment_.environment, ports_, &events_, &dialog_};
};

using Lines = std::vector<std::wstring>;

// The stage of the tests of the operations: 9600 baud allowed, each look at the clock takes a millisecond,
// and one record of the control's calls, the events and the log's lines ("Log ..."), in the order they
// happen.
class SerialConversationTest : public CKespCOMPort3Test {
 protected:
  SerialConversationTest() {
    AllowRates(0, 13, 6);
    environment_.clock.SetStepPerReading(1);
    ports_.line.record = [this](const std::string& call) {
      record_.push_back(SystemCodePage().FromBytes(call));
    };
    events_.record = [this](const std::wstring& event) { record_.push_back(event); };
    environment_.files.OnAppend([this](const std::wstring&, std::string_view line) {
      const std::size_t message = line.find('\t', line.find('\t') + 1) + 1;
      record_.push_back(L"Log " +
                        SystemCodePage().FromBytes(line.substr(message, line.size() - message - 2)));
    });
  }

  // The port is released after what its listeners write to.
  ~SerialConversationTest() override {
    ports_.line.record = [](const std::string&) {};
    ports_.line.on_output = nullptr;
    ports_.line.on_poll = nullptr;
    events_.record = [](const std::wstring&) {};
    events_.handlers.clear();
    environment_.files.OnAppend([](const std::wstring&, std::string_view) {});
    environment_.pump.OnPump(nullptr);
  }

  // Opens the port and forgets what was recorded so far.
  void Open() {
    port_.OpenPort();
    record_.clear();
  }

  // Turns the log on; LogLines() are the messages in it.
  void StartLog() { port_.SetCreateLogFile(true); }
  Lines LogLines() const { return Recorded(L"Log ", 4); }
  // The bytes written to the line, one entry for each time.
  Lines Outputs() const { return Recorded(L"Output ", 7); }
  // The events that were raised.
  Lines Events() const {
    Lines events;
    for (const std::wstring& line : record_) {
      const bool event = line.ends_with(L')') && !line.starts_with(L"Log ") && !line.starts_with(L"Output ");
      if (event) events.push_back(line);
    }
    return events;
  }

  std::int32_t Now() const { return environment_.clock.tick(); }

  Lines record_;

 private:
  // The recorded lines that begin so, without their first characters.
  Lines Recorded(const std::wstring& beginning, std::size_t dropped) const {
    Lines lines;
    for (const std::wstring& line : record_) {
      if (line.starts_with(beginning)) lines.push_back(line.substr(dropped));
    }
    return lines;
  }
};

}  // namespace kesp
