// The settings of the RS-232 transport.
#include <algorithm>
#include <array>
#include <string_view>

#include "console/baud_rates.h"
#include "console/transport_settings_win.h"

namespace kesp::console {
namespace {

// In the orders of the library's enumerations.
constexpr std::string_view kParities = "NEOMS";
constexpr std::array<const char*, 3> kStopBits = {"1", "1.5", "2"};
constexpr std::array<int, 3> kSwitchPorts = {4, 8, 6};
constexpr int kFewestDataBits = 4;

template <class Values, class Value>
int NumberOf(const Values& values, const Value& value) {
  return static_cast<int>(std::find(std::begin(values), std::end(values), value) - std::begin(values));
}

template <class Values>
auto At(const Values& values, int number) {
  return values.at(std::min(static_cast<std::size_t>(number), values.size() - 1));
}

class ComSettings : public TransportSettings {
  ComPtr<_CKespCOMPort3> port_;
  std::optional<std::string> omega_;

  template <class Getter>
  auto Get(Getter getter) {
    return console::Read(port_.Get(), getter);
  }
  template <class Setter, class Value>
  void Put(Setter setter, const Value& value) {
    Write(port_.Get(), setter, value);
  }

 public:
  ComSettings(_CKespCommObj* comm, const ComAddress& address)
      : port_(Use<_CKespCOMPort3>(comm, csRS232)), omega_(address.line.omega) {
    Check(port_->put_Port(static_cast<short>(address.port)));
    ApplyController(address.line);
    ApplyLine(address.line);
  }

  Address Read() override {
    ComAddress address;
    address.port = Get(&_CKespCOMPort3::get_Port);
    LineOptions& line = address.line;
    ReadController(line);
    ReadLine(line);
    line.infrared = Get(&_CKespCOMPort3::get_UseIRDongle);
    line.cr = Get(&_CKespCOMPort3::get_UseRedirector);
    if (Get(&_CKespCOMPort3::get_UseRFModem)) line.modem = Get(&_CKespCOMPort3::get_InstrAddr);
    if (Get(&_CKespCOMPort3::get_UseSmartSwitch)) ReadSwitch(line);
    return address;
  }

  void SetTimeout(int milliseconds) override { Check(port_->put_TimeOut(milliseconds)); }

  void LeaveLineEnds() override { Put(&_CKespCOMPort3::put_StripCRLF, false); }

 private:
  ComPtr<_CKespSmartSwitch3> Switch() {
    ComPtr<_CKespSmartSwitch3> found;
    Check(port_->get_SmartSwitch(&found));
    return found;
  }

  // Comes first, because it sets other properties, too.
  void ApplyController(const LineOptions& line) {
    if (line.omega) Check(port_->put_ControllerStyle(CS_OMEGA));
    if (line.precidia) Check(port_->put_ControllerStyle(CS_PRECIDIA));
    Put(&_CKespCOMPort3::put_UseRedirector, line.cr);
    Put(&_CKespCOMPort3::put_UseIRDongle, line.infrared);
    if (line.modem) {
      Put(&_CKespCOMPort3::put_UseRFModem, true);
      Check(port_->put_InstrAddr(static_cast<short>(*line.modem)));
    }
    if (!line.port_switch) return;
    Put(&_CKespCOMPort3::put_UseSmartSwitch, true);
    Check(Switch()->put_Style(static_cast<ESmartSwitchStyle3>(NumberOf(kSwitchPorts, line.switch_ports))));
    Write(Switch().Get(), &_CKespSmartSwitch3::put_SSPort, *line.port_switch);
  }

  void ApplyLine(const LineOptions& line) {
    if (line.baud) SetBaudRate(static_cast<EKespBaudRate3>(BaudRateNumber(*line.baud)));
    if (!line.frame_said) return;
    Put(&_CKespCOMPort3::put_DataBits, line.data_bits - kFewestDataBits);
    Put(&_CKespCOMPort3::put_Parity, NumberOf(kParities, line.parity));
    Put(&_CKespCOMPort3::put_StopBits, NumberOf(kStopBits, line.stop_bits));
  }

  // The library takes rates of its range only.
  void SetBaudRate(EKespBaudRate3 rate) {
    if (rate > Get(&_CKespCOMPort3::get_MaxBaudRate)) Check(port_->put_MaxBaudRate(rate));
    if (rate < Get(&_CKespCOMPort3::get_MinBaudRate)) Check(port_->put_MinBaudRate(rate));
    Check(port_->put_BaudRate(rate));
  }

  void ReadController(LineOptions& line) {
    const EKespControllerStyle3 style = Get(&_CKespCOMPort3::get_ControllerStyle);
    line.precidia = style == CS_PRECIDIA;
    // The controller's address is not a setting but goes with each command; 01 is what they come with.
    if (style == CS_OMEGA) line.omega = omega_.value_or("01");
  }

  void ReadLine(LineOptions& line) {
    const int rate = Get(&_CKespCOMPort3::get_BaudRate);
    if (rate >= 0) line.baud = At(kBaudRates, rate);
    line.data_bits = Get(&_CKespCOMPort3::get_DataBits) + kFewestDataBits;
    line.parity = At(kParities, Get(&_CKespCOMPort3::get_Parity));
    line.stop_bits = At(kStopBits, Get(&_CKespCOMPort3::get_StopBits));
    LineOptions usual;
    if (line.omega) usual.data_bits = 7, usual.parity = 'E';
    line.frame_said =
        line.data_bits != usual.data_bits || line.parity != usual.parity || line.stop_bits != usual.stop_bits;
  }

  void ReadSwitch(LineOptions& line) {
    const std::string name = console::Read(Switch().Get(), &_CKespSmartSwitch3::get_SSPort);
    if (name.empty()) return;
    line.port_switch = name;
    line.switch_ports = console::Read(Switch().Get(), &_CKespSmartSwitch3::get_NumPorts);
  }
};

}  // namespace

std::unique_ptr<TransportSettings> ApplyCom(_CKespCommObj* comm, const ComAddress& address) {
  return std::make_unique<ComSettings>(comm, address);
}

}  // namespace kesp::console
