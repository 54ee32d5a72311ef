// A discovery, which raises no AutoDetectUpdate: what it is doing shows in the transport's properties.
#include "console/discovery_win.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "console/com_calls_win.h"
#include "console/event_sink_win.h"
#include "console/regular_looks_win.h"

namespace kesp::console {
namespace {

class Discovery {
 public:
  Discovery(_CKespTCP* tcp, const OnDetectionStep& on_step) : tcp_(tcp), on_step_(on_step) {
    Check(tcp_->get_Devices(&devices_));
  }

  std::vector<FoundInstrument> Run();
  // Tells the step that is being taken; may be called whenever the library handles messages or raises events.
  void Look() noexcept;

 private:
  DetectionStep Step();
  int Count() { return static_cast<int>(Read(devices_.Get(), &_CInstruments::get_Count)); }
  // Notes what the library has found by now.
  void Gather();
  void Gather(const FoundInstrument& instrument);

  _CKespTCP* tcp_;
  const OnDetectionStep& on_step_;
  ComPtr<_CInstruments> devices_;
  std::vector<FoundInstrument> found_;
  std::string asked_;  // the address that is being asked
  int number_ = 0;     // how many were asked
  bool ended_ = false;
  std::exception_ptr thrown_;
};

std::vector<FoundInstrument> Discovery::Run() {
  Check(tcp_->put_Protocol(sckUDPProtocol));
  ComText result;
  VARIANT_BOOL found = VARIANT_FALSE;
  {
    const EventConnection events(tcp_, __uuidof(__CKespTCP), [this](DISPID, EventArguments) { Look(); });
    const RegularLooks looks([this] { Look(); });
    Check(tcp_->AutoDetect(result.out(), dlAllCommands, &found));
  }
  if (thrown_) std::rethrow_exception(thrown_);
  Gather();
  return std::move(found_);
}

void Discovery::Look() noexcept try {
  if (!ended_) ended_ = !on_step_(Step());
  if (!ended_) return;
  // Whom the list does not hold any more is not asked.
  Gather();
  Check(devices_->Clear());
} catch (...) {
  thrown_ = std::current_exception();
  ended_ = true;
}

DetectionStep Discovery::Step() {
  const int count = Count();
  if (Read(tcp_, &_CKespTCP::get_Protocol) == sckUDPProtocol) return {"", "", count, 0};
  std::string address = Read(tcp_, &_CKespTCP::get_IPAddress);
  if (address != std::exchange(asked_, address)) number_ = std::min(number_ + 1, count);
  return {std::move(address), "*IDN?", number_, count};
}

void Discovery::Gather() {
  for (long index = 1; index <= Count(); ++index) {
    VARIANT position;
    VariantInit(&position);
    V_VT(&position) = VT_I4;
    V_I4(&position) = index;
    ComPtr<_CInstrument> item;
    Check(devices_->Item(position, &item));
    Gather({Read(item.Get(), &_CInstrument::get_IPAddress), Read(item.Get(), &_CInstrument::get_Model),
            Read(item.Get(), &_CInstrument::get_Serial)});
  }
}

void Discovery::Gather(const FoundInstrument& instrument) {
  const auto known = std::find_if(found_.begin(), found_.end(), [&](const FoundInstrument& each) {
    return each.address == instrument.address;
  });
  if (known == found_.end()) {
    found_.push_back(instrument);
  } else if (!instrument.model.empty()) {
    *known = instrument;
  }
}

}  // namespace

std::vector<FoundInstrument> DiscoverBy(_CKespTCP* tcp, const OnDetectionStep& on_step) {
  return Discovery(tcp, on_step).Run();
}

}  // namespace kesp::console
