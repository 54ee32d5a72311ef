// AutoDetect, and what it left in the collection of instruments.
#include "bench/discovery_client.h"

#include <KespCommObj.h>
#include <wrl/client.h>

#include "bench/calls.h"
#include "bench/discovery_watch.h"
#include "bench/measure.h"

namespace kesp::bench {

using Microsoft::WRL::ComPtr;

namespace {

ComPtr<::_CKespTCP> NewTransport() {
  ComPtr<::_CKespTCP> tcp;
  CheckResult(CoCreateInstance(__uuidof(::CKespTCP), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&tcp)),
              "CoCreateInstance");
  CheckResult(tcp->put_Protocol(::sckUDPProtocol), "Protocol");
  return tcp;
}

std::size_t CountOf(::_CInstruments* instruments) {
  long count = 0;
  CheckResult(instruments->get_Count(&count), "Count");
  return static_cast<std::size_t>(count);
}

std::size_t CountIdentified(::_CInstruments* instruments) {
  std::size_t identified = 0;
  VARIANT index;
  V_VT(&index) = VT_I4;
  const auto count = static_cast<long>(CountOf(instruments));
  for (V_I4(&index) = 1; V_I4(&index) <= count; ++V_I4(&index)) {
    ComPtr<::_CInstrument> instrument;
    CheckResult(instruments->Item(index, &instrument), "Item");
    BSTR model = nullptr;
    CheckResult(instrument->get_Model(&model), "Model");
    if (LengthOf(model) > 0) ++identified;
  }
  return identified;
}

// The mean of what lies between so many moments.
double Between(double first, double last, std::size_t moments) {
  return moments > 1 ? (last - first) / static_cast<double>(moments - 1) : 0;
}

}  // namespace

DiscoveryFigures Discover(const Senders& senders) {
  const ComPtr<::_CKespTCP> tcp = NewTransport();
  const DiscoveryWatch watch(tcp.Get(), senders.pause_ms);
  DiscoveryFigures figures;
  figures.whole = Microseconds([&] {
    BSTR result = nullptr;
    VARIANT_BOOL found = VARIANT_FALSE;
    CheckResult(tcp->AutoDetect(&result, ::dlAllCommands, &found), "AutoDetect");
    SysFreeString(result);
  });
  ComPtr<::_CInstruments> instruments;
  CheckResult(tcp->get_Devices(&instruments), "Devices");
  figures.heard = CountOf(instruments.Get());
  figures.identified = CountIdentified(instruments.Get());
  figures.receiving = Between(watch.first_answer(), watch.last_answer(), watch.answers());
  if (watch.answers() > 0) figures.handling = watch.handling() / static_cast<double>(watch.answers());
  // A connection is reported when it has been made, so from one to the next it is one of each step.
  figures.asking = Between(watch.first_connection(), watch.last_connection(), watch.connections());
  return figures;
}

}  // namespace kesp::bench
