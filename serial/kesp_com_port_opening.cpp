// The serial transport's port: opening, closing, availability, buffers, and the boxes on the line.
#include <utility>

#include "serial/kesp_com_port.h"
#include "serial/line_settings.h"
#include "serial/serial_control_errors.h"
#include "support/attempt.h"
#include "support/error_box.h"
#include "support/timing.h"

namespace kesp {

namespace {

// Codes of SerialPorts::IsCOMPortAvailable.
constexpr std::int32_t kNoSuchPort = 2;
constexpr std::int32_t kPortInUse = 5;

// The length of each pulse on the modem control lines, as the infrared adapter wants it.
constexpr std::int32_t kPulseMs = 10;

// How long each port of a switch stays selected in its test, so that its lamp can be seen.
constexpr std::int32_t kLampMs = 200;

// How long closing waits for bytes that may lie in an adapter; 150 characters at 150 bit/s.
constexpr std::uint32_t kLongestTransmissionMs = 10000;

// The infrared adapter's own coding of its bit rates, which is not ascending.
int PulsesFor(EKespBaudRate3 rate) {
  switch (rate) {
    case EKespBaudRate3::br19200:
      return 1;
    case EKespBaudRate3::br57600:
      return 2;
    case EKespBaudRate3::br115200:
      return 3;
    case EKespBaudRate3::br38400:
      return 4;
    default:
      return 0;
  }
}

}  // namespace

void CKespCOMPort3::ConfigureControl() {
  if (control_->PortOpen()) CloseControl();
  control_->SetCommPort(port_);
  control_->SetSettings(GetSettings());
  transmission_.Begin(ReadLineSettings(control_->Settings()).value_or(LineSettings{}));
  switch (controller_style_) {
    case EKespControllerStyle3::CS_KESP:
    case EKespControllerStyle3::CS_OMEGA:
      control_->SetHandshaking(SerialHandshaking::kNone);
      break;
    case EKespControllerStyle3::CS_PRECIDIA:
      control_->SetHandshaking(SerialHandshaking::kXonXoff);
      break;
    default:
      break;
  }
}

bool CKespCOMPort3::OpenPort() {
  try {
    ConfigureControl();
    Log([&] {
      return L"Opening COM port " + std::to_wstring(port_) + L" with settings " + control_->Settings();
    });
    control_->Open();
    if (use_smart_switch_) smart_switch_->Select(*this);
    if (use_ir_dongle_) WakeInfraredAdapter();
  } catch (...) {
    FailIn(L"OpenPort()", CurrentFailure());
  }
  return true;
}

void CKespCOMPort3::WakeInfraredAdapter() {
  const auto pulse = [&](void (SerialControl::*set_line)(bool)) {
    // Whatever happens: adapters are fed by these lines, and the control remembers them for the next opening.
    const Attempt low = Try([&] {
      ((*control_).*set_line)(false);
      Delay(environment_.clock, environment_.pump, kPulseMs);
      return true;
    });
    ((*control_).*set_line)(true);
    if (low.error) throw Failure(*low.error);
    Delay(environment_.clock, environment_.pump, kPulseMs);
  };
  pulse(&SerialControl::SetDTREnable);
  for (int left = PulsesFor(baud_rate_); left > 0; --left) pulse(&SerialControl::SetRTSEnable);
}

void CKespCOMPort3::ClosePort() {
  if (!control_->PortOpen()) return;
  try {
    if (use_smart_switch_) {
      smart_switch_->Release(*this);
      // A line that is held up must not keep the port from being closed.
      AwaitOutput();
    }
    Log([&] { return L"Closing COM port " + std::to_wstring(port_); });
    CloseControl();
    Log([&] { return L"Closed COM port " + std::to_wstring(port_); });
  } catch (...) {
    const Failure failure = CurrentFailure();
    CloseControl();
    LogFailure(L"ClosePort()", failure);
    FailIn(L"ClosePort()", failure);
  }
}

void CKespCOMPort3::CloseControl() noexcept {
  try {
    // Many adapters drop what they have not sent when their port is closed. What the driver itself still
    // holds is lost, as a client who closes a port that takes nothing wants it.
    if (transmission_.Left() != 0 && control_->OutBufferCount() == 0) AwaitEndOfTransmission();
  } catch (...) {
    // The port is gone, and whatever it held with it.
  }
  control_->Close();
  transmission_.End();
}

void CKespCOMPort3::AwaitEndOfTransmission() {
  const std::int32_t start = environment_.clock.TickCount();
  while (transmission_.Left() != 0) {
    if (MillisecondsSince(environment_.clock, start) > kLongestTransmissionMs) return;
  }
}

std::int32_t CKespCOMPort3::PortCode(std::int16_t cp, const wchar_t* question) {
  try {
    return ports_.IsCOMPortAvailable(cp);
  } catch (...) {
    ShowError(environment_.user, L"attempting to determine if COM" + std::to_wstring(cp) + question,
              CurrentFailure());
    return kNoSuchPort;
  }
}

bool CKespCOMPort3::PortExists(std::int16_t cp) {
  return PortCode(cp, L" exists") != kNoSuchPort;
}

bool CKespCOMPort3::IsPortAvailable(std::int16_t cp) {
  const std::int32_t code = PortCode(cp, L" is currently available");
  return code != kNoSuchPort && code != kPortInUse;
}

void CKespCOMPort3::ClearBuffers() {
  Log(L"Clearing buffers...");
  control_->ClearOutBuffer();
  // Closing must not wait for bytes that never leave.
  transmission_.TakeBack(static_cast<std::size_t>(std::exchange(unsent_, 0)));
  control_->ClearInBuffer();
}

void CKespCOMPort3::SetInputMode(EInputMode eMode) {
  if (eMode == EInputMode::imText || eMode == EInputMode::imBinary) input_mode_ = eMode;
}

void CKespCOMPort3::AwaitLine() {
  if (!AwaitOutput()) throw SerialControlFailure(kSerialDeviceError);
}

void CKespCOMPort3::LogSwitch(const std::wstring& message) {
  Log([&] { return message; });
}

void CKespCOMPort3::TestSmartSwitch() {
  try {
    environment_.user.SetPointer(MousePointer::kBusy);
    OpenPort();
    for (std::int16_t n = 0; n < smart_switch_->NumPorts(); ++n) {
      smart_switch_->SetSSPort(std::wstring(1, static_cast<wchar_t>(L'A' + n)));
      smart_switch_->Select(*this);
      Delay(environment_.clock, environment_.pump, kLampMs);
    }
    ClosePort();
    environment_.user.SetPointer(MousePointer::kDefault);
  } catch (...) {
    // The port stays open and the pointer busy, on purpose.
    ShowError(environment_.user, L"attempting to test SmartSwitch", CurrentFailure());
  }
}

}  // namespace kesp
