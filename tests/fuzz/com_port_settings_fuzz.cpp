// The settings of a serial transport, set by a client in any order to any value.
#include <string>
#include <tuple>

#include "serial/baud_rate.h"
#include "serial/kesp_com_port.h"
#include "serial/line_settings.h"
#include "serial/serial_control_fake.h"
#include "support/environment_fake.h"
#include "support/failure.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {
namespace {

auto SettingsOf(const CKespCOMPort3& port) {
  return std::tuple(port.Port(), port.BaudRate(), port.MinBaudRate(), port.MaxBaudRate(), port.TimeOut(),
                    port.StripCRLF(), port.TerminateOnLF(), port.CheckNonAscii(), port.DataBits(),
                    port.StopBits(), port.Parity(), port.ControllerStyle());
}

// Most values lie near those that have a meaning.
template <typename Value = std::int32_t>
Value Number(FuzzInput& input) {
  const std::uint8_t byte = input.Byte();
  return static_cast<Value>(byte == 0x80 ? input.Long() : static_cast<std::int8_t>(byte));
}

void SetOne(CKespCOMPort3& port, FuzzInput& input) {
  switch (input.Below(12)) {
    case 0:
      return port.SetPort(static_cast<std::int16_t>(std::int64_t{Number(input)} * 3));
    case 1:
      return port.SetBaudRate(Number<EKespBaudRate3>(input));
    case 2:
      return port.SetMinBaudRate(Number<EKespBaudRate3>(input));
    case 3:
      return port.SetMaxBaudRate(Number<EKespBaudRate3>(input));
    case 4:
      return port.SetTimeOut(Number(input));
    case 5:
      return port.SetControllerStyle(Number<EKespControllerStyle3>(input));
    case 6:
      return port.SetDataBits(Number<EKespDataBits3>(input));
    case 7:
      return port.SetStopBits(Number<EKespStopBits3>(input));
    case 8:
      return port.SetParity(Number<EKespParity3>(input));
    case 9:
      return port.SetStripCRLF(input.Flag());
    case 10:
      return port.SetTerminateOnLF(input.Flag());
    default:
      return port.SetCheckNonAscii(input.Flag());
  }
}

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

void Use(FuzzInput& input) {
  EnvironmentFake environment;
  SerialPortsFake ports(environment.clock);
  CKespCOMPort3 port(environment.environment, ports);
  while (input.HasMore()) {
    const auto before = SettingsOf(port);
    try {
      SetOne(port, input);
    } catch (const Failure&) {
      Require(SettingsOf(port) == before, "what is refused changes nothing");
    }
    RequireRules(port);
  }
}

}  // namespace
}  // namespace kesp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesp::FuzzInput input(data, size);
  kesp::Use(input);
  return 0;
}
