// Objects of the six classes that a client can create, in turn.
#include <array>
#include <stdexcept>

#include "bench/calls.h"
#include "bench/text.h"
#include "tests/soak/part.h"
#include "tests/soak/queries.h"

namespace kesp::soak {

using bench::CheckResult;
using bench::Text;
using Microsoft::WRL::ComPtr;

namespace {

template <class Interface>
ComPtr<Interface> Create(REFCLSID clsid) {
  ComPtr<Interface> made;
  CheckResult(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made)),
              "CoCreateInstance");
  return made;
}

void Expect(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string(what) + " is not as it should be");
}

class Objects : public Part {
 public:
  explicit Objects(const Surroundings& around) : host_(around.host), port_(static_cast<SHORT>(around.port)) {}

  void Do(long number, long, long) override {
    static constexpr std::array kWays = {&Objects::UseCommObj,    &Objects::UseTcp,
                                         &Objects::UseComPort,    &Objects::UseIeee,
                                         &Objects::UseInstrument, &Objects::UseInstruments};
    (this->*kWays[static_cast<std::size_t>(number) % kWays.size()])(number);
  }

 private:
  // A query, with a new communication object and all its transports.
  void UseCommObj(long number) {
    const QueryClient client("");
    ComPtr<::_CKespTCP> tcp;
    CheckResult(bench::SelectTransport(client.comm(), ::csTCPIP).As(&tcp), "the network transport");
    SetAddress(tcp.Get());
    client.Ask(number);
  }
  // Released while it is connected.
  void UseTcp(long) {
    const auto tcp = Create<::_CKespTCP>(__uuidof(::CKespTCP));
    SetAddress(tcp.Get());
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    CheckResult(tcp->Initialize(&succeeded), "Initialize");
    CheckResult(tcp->WriteLine(Text("Q object").get(), &succeeded), "WriteLine");
    BSTR result = nullptr;
    CheckResult(tcp->ReadLine(&result, &succeeded), "ReadLine");
    Expect(Narrow(result) == "Q object", "the reply");
    SysFreeString(result);
  }
  // Its port switch lives on for a moment when the port has been released.
  void UseComPort(long) {
    auto port = Create<::_CKespCOMPort3>(__uuidof(::CKespCOMPort3));
    ComPtr<::_CKespSmartSwitch3> port_switch;
    CheckResult(port->get_SmartSwitch(&port_switch), "SmartSwitch");
    CheckResult(port->put_MaxBaudRate(::br115200), "MaxBaudRate");
    CheckResult(port->put_BaudRate(::br9600), "BaudRate");
    ::EKespBaudRate3 rate{};
    CheckResult(port->get_BaudRate(&rate), "BaudRate");
    Expect(rate == ::br9600, "BaudRate");
    port.Reset();
  }
  void UseIeee(long) {
    const auto ieee = Create<::_CKespIEEE>(__uuidof(::CKespIEEE));
    SHORT address = 0;
    CheckResult(ieee->put_PrimaryAddress(17), "PrimaryAddress");
    CheckResult(ieee->get_PrimaryAddress(&address), "PrimaryAddress");
    Expect(address == 17, "PrimaryAddress");
  }
  void UseInstrument(long number) {
    const auto instrument = Create<::_CInstrument>(__uuidof(::CInstrument));
    const std::string serial = "SIM" + std::to_string(number);
    CheckResult(instrument->put_Serial(Text(serial).get()), "Serial");
    BSTR kept = nullptr;
    CheckResult(instrument->get_Serial(&kept), "Serial");
    Expect(Narrow(kept) == serial, "Serial");
    SysFreeString(kept);
  }
  // Released with an instrument in it and an enumerator beside it.
  void UseInstruments(long) {
    const auto instruments = Create<::_CInstruments>(__uuidof(::CInstruments));
    const auto instrument = Create<::_CInstrument>(__uuidof(::CInstrument));
    CheckResult(instruments->AddReference(instrument.Get(), Text("key").get()), "AddReference");
    ComPtr<IUnknown> enumerator;
    CheckResult(instruments->get_NewEnum(&enumerator), "NewEnum");
    LONG count = 0;
    CheckResult(instruments->get_Count(&count), "Count");
    Expect(count == 1, "Count");
  }

  void SetAddress(::_CKespTCP* tcp) const {
    CheckResult(tcp->put_IPAddress(host_.get()), "IPAddress");
    CheckResult(tcp->put_Port(port_), "Port");
  }

  Text host_;
  SHORT port_;
};

}  // namespace

std::unique_ptr<Part> MakeObjects(const Surroundings& around) {
  return std::make_unique<Objects>(around);
}

}  // namespace kesp::soak
