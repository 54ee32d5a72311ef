// Finds the instruments on the network and asks each who it is, early bound.
//
//   discover.exe
#include "kesp.h"

namespace {

void Print(_CInstrument* instrument) {
  Text address, model, serial;
  Check(instrument->get_IPAddress(address.out()));
  Check(instrument->get_Model(model.out()));
  Check(instrument->get_Serial(serial.out()));
  std::printf("instrument:  %ls  model %ls  serial %ls\n", address.c_str(), model.c_str(), serial.c_str());
}

}  // namespace

int wmain() {
  return Run([] {
    ComPtr<_CKespTCP> tcp;
    Check(CoCreateInstance(__uuidof(CKespTCP), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&tcp)));
    // One broadcast to everybody, over UDP; what answers is asked over TCP.
    Check(tcp->put_Protocol(sckUDPProtocol));
    Text nothing;
    VARIANT_BOOL found = VARIANT_FALSE;
    Check(tcp->AutoDetect(nothing.out(), dlAllCommands, &found));
    if (found == VARIANT_FALSE) std::printf("nobody answered\n");

    ComPtr<_CInstruments> devices;
    LONG count = 0;
    Check(tcp->get_Devices(&devices));
    Check(devices->get_Count(&count));
    VARIANT position;
    V_VT(&position) = VT_I4;
    for (V_I4(&position) = 1; V_I4(&position) <= count; ++V_I4(&position)) {
      ComPtr<_CInstrument> instrument;
      Check(devices->Item(position, &instrument));
      Print(instrument.Get());
    }
    return found == VARIANT_FALSE ? 1 : 0;
  });
}
