// The settings of the IEEE-488 transport.
#include "console/timeouts.h"
#include "console/transport_settings_win.h"

namespace kesp::console {
namespace {

class GpibSettings : public TransportSettings {
 public:
  GpibSettings(_CKespCommObj* comm, const GpibAddress& address) : ieee_(Use<_CKespIEEE>(comm, csIEEE)) {
    if (address.primary) Check(ieee_->put_PrimaryAddress(static_cast<short>(*address.primary)));
    Check(ieee_->put_SecondaryAddress(static_cast<short>(address.secondary)));
    Write(ieee_.Get(), &_CKespIEEE::put_EOSChar, std::to_string(address.eos));
    // With it the first digit of that number would end a reply.
    Write(ieee_.Get(), &_CKespIEEE::put_SetEOS, false);
    Write(ieee_.Get(), &_CKespIEEE::put_ClearDevice, address.clear);
  }

  Address Read() override {
    GpibAddress address;
    address.primary = console::Read(ieee_.Get(), &_CKespIEEE::get_PrimaryAddress);
    address.secondary = console::Read(ieee_.Get(), &_CKespIEEE::get_SecondaryAddress);
    address.eos = std::stoi(console::Read(ieee_.Get(), &_CKespIEEE::get_EOSChar));
    address.clear = console::Read(ieee_.Get(), &_CKespIEEE::get_ClearDevice);
    return address;
  }

  void SetTimeout(int milliseconds) override {
    Check(ieee_->put_TimeOutSecs(static_cast<ETimeOutSecs>(IeeeTimeoutCode(milliseconds))));
  }

  void LeaveLineEnds() override {}  // they are there in every case

 private:
  ComPtr<_CKespIEEE> ieee_;
};

}  // namespace

std::unique_ptr<TransportSettings> ApplyGpib(_CKespCommObj* comm, const GpibAddress& address) {
  return std::make_unique<GpibSettings>(comm, address);
}

}  // namespace kesp::console
