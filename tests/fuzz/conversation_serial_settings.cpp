// The client of a conversation with the serial transport: searches, the modem, the ports of the machine, and
// settings.
#include <cstddef>
#include <tuple>

#include "support/error_numbers.h"
#include "tests/fuzz/conversation_serial.h"

namespace kesp {

namespace {

using namespace com_port_error;

constexpr std::int32_t kTimeOuts[] = {3000, 0, 1, 250, 2000, 100'000, -1, 2147483647};

}  // namespace

void SerialConversation::AutoDetect() {
  const auto level = static_cast<EDetectLevel>(input_.Byte() % 5);
  const std::wstring address = port_->InstrAddr() > 99 ? L"01" : L"";
  const EKespBaudRate3 rate = port_->BaudRate();
  const std::int32_t time_out = port_->TimeOut();
  const bool check = port_->CheckNonAscii();
  const EKespControllerStyle3 style = port_->ControllerStyle();
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
  // Below 150 bit/s, and at no rate at all, opening fails.
  const bool fails =
      call.failed || rate == EKespBaudRate3::brNone || port_->MinBaudRate() == EKespBaudRate3::brNone;
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

void SerialConversation::ChangeRates() {
  const std::uint8_t which = input_.Byte();
  const auto rate = static_cast<EKespBaudRate3>(which / 4 % 18 - 2);
  const auto rates = [&] {
    return std::tuple(port_->MinBaudRate(), port_->MaxBaudRate(), port_->BaudRate());
  };
  const auto before = rates();
  const Attempt attempt = Try([&] {
    if (which % 4 == 0)
      port_->SetMinBaudRate(rate);
    else if (which % 4 == 1)
      port_->SetMaxBaudRate(rate);
    else
      port_->SetBaudRate(rate);
    return true;
  });
  Require(attempt.number() == 0 || attempt.number() == ERR_BAUD_RATE_NOT_SUPPORTED ||
              attempt.number() == ERR_INVALID_BAUD_RATE,
          "a rate is refused with its number");
  Require(!attempt.error || rates() == before, "a rate that is refused changes nothing");
  Require(port_->MinBaudRate() <= port_->MaxBaudRate(), "the range of rates has its ends in order");
}

void SerialConversation::ChangeSetting() {
  const std::uint8_t setting = input_.Byte();
  const int value = setting / 8;
  switch (setting % 8) {
    case 0: {
      const std::int32_t time_out = kTimeOuts[value % 8];
      const Attempt attempt = Try([&] { return port_->SetTimeOut(time_out), true; });
      return Require(attempt.number() == (time_out < 0 ? ERR_INVALID_TIMEOUT : 0),
                     "negative time-outs are refused");
    }
    case 1: {
      const auto number = static_cast<std::int16_t>(value * 40);
      const Attempt attempt = Try([&] { return port_->SetPort(number), true; });
      return Require(attempt.number() == (number < 1 || number > 256 ? ERR_INVALID_COM_PORT : 0),
                     "ports are 1 to 256");
    }
    case 2:
      return port_->SetControllerStyle(static_cast<EKespControllerStyle3>(value % 6));
    case 3:
      port_->SmartSwitch()->SetStyle(static_cast<ESmartSwitchStyle3>(value % 4));
      return port_->SmartSwitch()->SetSSPort(WideText(input_.Bytes(static_cast<std::size_t>(value) / 4 % 3)));
    case 4:
      return port_->SetInstrAddr(static_cast<std::int16_t>(value * 8));
    case 5:
      port_->SetDataBits(static_cast<EKespDataBits3>(value % 7));
      return port_->SetParity(static_cast<EKespParity3>(value % 6));
    case 6:
      return port_->SetInputMode(static_cast<EInputMode>(value % 3));
    default:
      return port_->SetStopBits(static_cast<EKespStopBits3>(value % 4));
  }
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
