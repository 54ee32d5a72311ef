// The three transports. Each command has its number in it and the instrument sends it back, so that no reply
// can pass for another one. Every second call is late bound, as a script's.
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

// Over TCP and on the GPIB each query opens and closes, whatever AutoClose says.
class Queries : public Part {
 public:
  void Do(long number, long, long) override { client_.Ask(number); }

 protected:
  explicit Queries(std::string reply_end) : client_(std::move(reply_end)) {}
  ::_CKespCommObj* comm() const { return client_.comm(); }

 private:
  QueryClient client_;
};

class TcpQueries : public Queries {
 public:
  explicit TcpQueries(const Surroundings& around) : Queries("") {
    ComPtr<::_CKespTCP> tcp;
    CheckResult(bench::SelectTransport(comm(), ::csTCPIP).As(&tcp), "the network transport");
    CheckResult(tcp->put_IPAddress(Text(around.host).get()), "IPAddress");
    CheckResult(tcp->put_Port(static_cast<SHORT>(around.port)), "Port");
  }
};

// With AutoClose as it is at first, True, for the first half of each tenth, and without for the second half.
class SerialQueries : public Queries {
 public:
  explicit SerialQueries(const Surroundings& around) : Queries("") {
    ComPtr<::_CKespCOMPort3> port;
    CheckResult(bench::SelectTransport(comm(), ::csRS232).As(&port), "the serial transport");
    CheckResult(port->put_Port(static_cast<SHORT>(around.com)), "Port");
    CheckResult(port->put_BaudRate(::br9600), "BaudRate");
    CheckResult(port->put_UseRedirector(VARIANT_TRUE), "UseRedirector");
  }

  void Do(long number, long index, long calls) override {
    if (index == 0 || index == calls / 2) SetAutoClose(index == 0);
    Queries::Do(number, index, calls);
  }
  void Rest() override {
    // Assigning the style closes the port that the last query left open.
    ::ECommStyle style = ::csRS232;
    CheckResult(comm()->put_CommStyle(&style), "CommStyle");
  }

 private:
  void SetAutoClose(bool on) const {
    CheckResult(comm()->put_AutoClose(on ? VARIANT_TRUE : VARIANT_FALSE), "AutoClose");
  }
};

class GpibQueries : public Queries {
 public:
  GpibQueries() : Queries("\n") {
    ComPtr<::_CKespIEEE> ieee;
    CheckResult(bench::SelectTransport(comm(), ::csIEEE).As(&ieee), "the IEEE-488 transport");
    CheckResult(ieee->put_PrimaryAddress(5), "PrimaryAddress");
    CheckResult(ieee->put_EOSChar(Text("10").get()), "EOSChar");
    CheckResult(ieee->put_SetEOS(VARIANT_FALSE), "SetEOS");
  }

  void Rest() override {
    HMODULE driver = GetModuleHandleW(L"Gpib-32.dll");
    auto* count = reinterpret_cast<int(__stdcall*)()>(
        reinterpret_cast<void*>(GetProcAddress(driver, "KespSimulationOpenDescriptors")));
    if (count == nullptr) throw std::runtime_error("the driver is not the simulated one");
    if (const int open = count(); open != 0) {
      throw std::runtime_error(std::to_string(open) + " devices are open between two queries");
    }
  }
};

}  // namespace

std::unique_ptr<Part> MakeTcpQueries(const Surroundings& around) {
  return std::make_unique<TcpQueries>(around);
}

std::unique_ptr<Part> MakeSerialQueries(const Surroundings& around) {
  return std::make_unique<SerialQueries>(around);
}

std::unique_ptr<Part> MakeGpibQueries(const Surroundings&) {
  return std::make_unique<GpibQueries>();
}

}  // namespace kesp::soak
