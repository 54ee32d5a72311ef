// The client of a conversation with the serial transport: searches, the modem, the ports of the machine, and
// settings.
#include <cstddef>
#include <limits>
#include <tuple>

#include "serial/baud_rate.h"
#include "serial/line_settings.h"
#include "support/error_numbers.h"
#include "tests/fuzz/conversation_serial.h"

namespace kesp {

namespace {

using namespace com_port_error;

constexpr std::int64_t kLongestWaitMs = 13'000;
constexpr std::int32_t kTimeOuts[] = {3000, 0, 1, 250, 2000, 100'000, -1, 2147483647};

auto SettingsOf(const CKespCOMPort3& port) {
  return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.TimeOut(),
                    port.StripCRLF(), port.TerminateOnLF(), port.CheckNonAscii(), port.DataBits(),
                    port.StopBits(), port.Parity(), port.ControllerStyle());
}

// What holds of the settings at any time.
void RequireRules(const CKespCOMPort3& port) {
  Require(port.Port() >= 1 && port.Port() <= 256, "the port is one of 256");
  Require(port.TimeOut() >= 0, "the timeout is not negative");
  Require(IsBaudRate(port.MinBaudRate()) && IsBaudRate(port.MaxBaudRate()), "the range is of rates");
  Require(port.MinBaudRate() <= port.MaxBaudRate(), "the range is the right way round");
  Require(IsBaudRate(port.BaudRate()), "the rate is one");
  const std::wstring text = port.GetSettings();
  const std::optional<LineSettings> line = ReadLineSettings(text);
  Require(line.has_value() == (port.BaudRate() != EKespBaudRate3::brNone), "the control reads the settings");
  Require(line || text.starts_with(L"<unknown>,"), "without a rate the text says so");
  if (line) {
    Require(std::to_wstring(line->bits_per_second) == port.BaudRateName(port.BaudRate()), "the rate is read");
  }
}

}  // namespace

void SerialConversation::AutoDetect() {
  const auto level = static_cast<EDetectLevel>(input_.Byte() % 5);
  const std::wstring address = port_->InstrAddr() > 99 ? L"01" : L"";
  const EKespBaudRate3 rate = port_->BaudRate();
  const std::int32_t time_out = port_->TimeOut();
  const bool check = port_->CheckNonAscii();
  const EKespControllerStyle3 style = port_->ControllerStyle();
  const std::int64_t first_tick = world_.clock.Tick() - world_.clock.now_ms();
  std::wstring answer;
  Call call;
  const Attempt attempt = Do(Member::kOther, call, [&] { return port_->AutoDetect(answer, level, address); });
  Require(!attempt.error, "a detection raises nothing");
  if (call.interfered) return;
  Require(!line_.is_open(), "a detection leaves the port closed");
  Require(
      port_->TimeOut() == time_out && port_->CheckNonAscii() == check && port_->ControllerStyle() == style,
      "a detection leaves the settings");
  Require(world_.user.pointer == MousePointer::kDefault, "a detection gives the pointer back");
  // No wait may go beyond the end of the tick counter, and at no rate opening fails.
  const bool is_at_end =
      first_tick + world_.clock.now_ms() + kLongestWaitMs > std::numeric_limits<std::int32_t>::max();
  const bool fails = call.failed || is_at_end || rate == EKespBaudRate3::brNone ||
                     port_->MinBaudRate() == EKespBaudRate3::brNone;
  if (!attempt.succeeded && !fails && !call.aborted && !port_->UseSmartSwitch()) {
    const bool sends = style != EKespControllerStyle3::CS_OMEGA || !address.empty();
    Require(!sends || port_->BaudRate() == rate || port_->UseRFModem(),
            "where nothing is found the rate stays");
  }
  if (!attempt.succeeded) Require(answer.empty(), "where nothing is found there is no answer");
}

void SerialConversation::UseModem() {
  const std::uint8_t what = input_.Byte();
  const EKespControllerStyle3 style = port_->ControllerStyle();
  RadioModemSettings settings;
  Call call;
  const Attempt attempt = Do(Member::kOther, call, [&] {
    switch (what % 3) {
      case 0:
        return port_->RFReadModemSettings(settings);
      case 1:
        return port_->RFWriteModemSettings(what * 1e8, what, -what, what * 1e9, what >= 0x80);
      default:
        return port_->RFWriteModemInstrAddress(static_cast<std::int16_t>(what * 128));
    }
  });
  Require(!attempt.error, "the members of the radio modem raise nothing");
  if (call.interfered) return;
  Require(port_->ControllerStyle() == style, "the style comes back");
  if (what % 3 != 2)
    Require(world_.user.pointer == MousePointer::kDefault, "the modem gives the pointer back");
}

void SerialConversation::AskPorts() {
  const std::uint8_t what = input_.Byte();
  const int boxes = world_.user.boxes;
  switch (what % 4) {
    case 0: {
      const bool exists = port_->PortExists(what);
      if (world_.user.boxes > boxes) return Require(!exists, "what cannot be asked does not exist");
      return Require(exists == (line_.last_code() != 2), "a port exists that the system knows");
    }
    case 1: {
      const bool is_available = port_->IsPortAvailable(what);
      if (world_.user.boxes > boxes) return Require(!is_available, "what cannot be asked is not available");
      return Require(is_available == (line_.last_code() != 2 && line_.last_code() != 5),
                     "a port is available that nobody holds");
    }
    case 2: {
      Call call;
      const Attempt attempt = Do(Member::kOther, call, [&] { return port_->TestSmartSwitch(), true; });
      return Require(!attempt.error, "the test of the switch raises nothing");
    }
    default: {
      Call call;
      const Attempt attempt = Do(Member::kOther, call, [&] { return port_->Edit(); });
      Require(!attempt.error && !attempt.succeeded, "without a dialog nothing is edited");
      Require(call.interfered || !line_.is_open(), "editing closes the port");
    }
  }
}

void SerialConversation::ChangeSettings(int which) {
  if (which == 0) ChangeSetting();
  if (which == 1) ChangeFlags();
  if (which == 2) ChangeRates();
  RequireRules(*port_);
}

void SerialConversation::ChangeRates() {
  const std::uint8_t which = input_.Byte();
  const auto rate = static_cast<EKespBaudRate3>(which < 0xF0 ? which / 4 % 18 - 2 : input_.Long());
  const std::int32_t number = Change([&] {
    if (which % 4 == 0) return port_->SetMinBaudRate(rate);
    if (which % 4 == 1) return port_->SetMaxBaudRate(rate);
    port_->SetBaudRate(rate);
  });
  Require(number == 0 || number == ERR_BAUD_RATE_NOT_SUPPORTED || number == ERR_INVALID_BAUD_RATE,
          "a rate is refused with its number");
}

void SerialConversation::ChangeSetting() {
  const std::uint8_t setting = input_.Byte();
  const int value = setting / 8;
  const auto near = [value](int count) { return value % (count + 2) - 1; };
  switch (setting % 8) {
    case 0: {
      const std::int32_t time_out = kTimeOuts[value % 8];
      return Require(Change([&] { port_->SetTimeOut(time_out); }) == (time_out < 0 ? ERR_INVALID_TIMEOUT : 0),
                     "negative time-outs are refused");
    }
    case 1: {
      const auto port = static_cast<std::int16_t>(value * 40 - 80);
      return Require(
          Change([&] { port_->SetPort(port); }) == (port < 1 || port > 256 ? ERR_INVALID_COM_PORT : 0),
          "ports are 1 to 256");
    }
    case 2:
      return port_->SetControllerStyle(static_cast<EKespControllerStyle3>(near(5)));
    case 3:
      port_->SmartSwitch()->SetStyle(static_cast<ESmartSwitchStyle3>(value % 4));
      return port_->SmartSwitch()->SetSSPort(WideText(input_.Bytes(static_cast<std::size_t>(value) / 4 % 3)));
    case 4:
      return port_->SetInstrAddr(static_cast<std::int16_t>(value * 8));
    case 5:
      port_->SetDataBits(static_cast<EKespDataBits3>(near(6)));
      return port_->SetParity(static_cast<EKespParity3>(near(5)));
    case 6:
      return port_->SetInputMode(static_cast<EInputMode>(value % 3));
    default:
      return port_->SetStopBits(static_cast<EKespStopBits3>(near(3)));
  }
}

// Sets something; returns the number of the failure, 0 without one.
std::int32_t SerialConversation::Change(const std::function<void()>& set) {
  const auto before = SettingsOf(*port_);
  const Attempt attempt = Try([&] { return set(), true; });
  Require(!attempt.error || SettingsOf(*port_) == before, "what is refused changes nothing");
  return attempt.number();
}

void SerialConversation::ChangeFlags() {
  const std::uint8_t flags = input_.Byte();
  port_->SetTerminateOnLF((flags & 1) == 0);
  port_->SetStripCRLF((flags & 2) == 0);
  port_->SetCheckNonAscii((flags & 4) == 0);
  port_->SetUseRedirector((flags & 8) != 0);
  port_->SetUseRFModem((flags & 16) != 0);
  port_->SetUseIRDongle((flags & 32) != 0);
  port_->SetUseSmartSwitch((flags & 64) != 0);
  port_->SetCreateLogFile((flags & 128) != 0);
}

}  // namespace kesp
