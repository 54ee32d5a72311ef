// What the unit tests of the serial transport share: the object with fakes, and what they expect of it.
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
#include "support/failure_fixture.h"
#include "support/lines_fixture.h"
#include "support/text.h"

namespace kesp {

inline constexpr std::int16_t kLowest16 = std::numeric_limits<std::int16_t>::min();
inline constexpr std::int16_t kHighest16 = std::numeric_limits<std::int16_t>::max();
inline constexpr std::int32_t kLowest32 = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kHighest32 = std::numeric_limits<std::int32_t>::max();

inline constexpr wchar_t kModemFile[] = L"C:\\Temp\\RFModem.ini";

template <typename Enumeration>
Enumeration As(std::int32_t value) {
  return static_cast<Enumeration>(value);
}

inline EKespBaudRate3 Rate(std::int32_t value) {
  return As<EKespBaudRate3>(value);
}

class CKespCOMPort3Fixture : public testing::Test {
 protected:
  CKespCOMPort3Fixture();
  ~CKespCOMPort3Fixture() override;

  // A range and a rate, set in the order that a new object asks for.
  void AllowRates(std::int32_t lowest, std::int32_t highest, std::int32_t rate);

  // Every setting but the framing and the style that a preset changes, to show what a call changed and left.
  static auto SettingsOf(const CKespCOMPort3& port) {
    return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.TimeOut(),
                      port.StripCRLF(), port.TerminateOnLF(), port.CheckNonAscii(), port.UseSmartSwitch(),
                      port.UseIRDongle(), port.UseRFModem(), port.InstrAddr(), port.RFModemPropHCID(),
                      port.UseRedirector(), port.CreateLogFile(), port.LogFilename(), port.GetKey(),
                      port.SmartSwitch());
  }

  // The call throws this failure and changes no setting.
  void ExpectRefused(const std::function<void()>& set, const Raised& failure);

  // So many boxes were shown, the last of them about this action and error.
  void ExpectBox(const std::wstring& action, const std::wstring& error, std::size_t count = 1);

  // The address that the radio modem at a port was last pointed at, as the settings file has it.
  std::wstring Remembered(const std::wstring& section = L"COM1") const;

  EnvironmentFake environment_;
  CKespCOMPort3EventsFake events_;
  ComPortDialogFake dialog_;
  SerialPortsFake ports_{environment_.clock};
  CKespCOMPort3 port_{environment_.environment, ports_, &events_, &dialog_};
};

// The stage of the tests of the operations: 9600 baud allowed, each look at the clock takes a millisecond,
// and one record of the control's calls, the events and the log's lines ("Log ..."), in the order they
// happen.
class SerialConversationFixture : public CKespCOMPort3Fixture {
 protected:
  SerialConversationFixture();

  // The port is released after what its listeners write to.
  ~SerialConversationFixture() override;

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

  // Runs a read: what it raised and returned, and the milliseconds from its first look at the clock to the
  // last are in raised_, returned_ and lasted_.
  void Run(const std::function<bool()>& read);

  Lines record_;
  Raised raised_;
  bool returned_ = false;
  std::int32_t lasted_ = 0;

 private:
  // The recorded lines that begin so, without their first characters.
  Lines Recorded(const std::wstring& beginning, std::size_t dropped) const;
};

}  // namespace kesp
