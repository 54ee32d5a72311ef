// Queries and the search for a device on the simulated bus.
#include "tests/clients/gpib_fixture.h"
#include "tests/clients/simulated_driver.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/transport_scenario.h"

namespace kesp::faults {

namespace {

const clients::SimulatedDriver& Driver() {
  static const clients::SimulatedDriver driver;
  static const bool is_loaded = (driver.Load(clients::Bus()), true);
  (void)is_loaded;
  return driver;
}

struct GpibStage {
  using Transport = _CKespIEEE;
  static constexpr ECommStyle kStyle = csIEEE;
  static constexpr const wchar_t* kIdentity = clients::kIdentity;
  static constexpr EDetectLevel kDetectedBy = dlCommonCommands;
  static constexpr const wchar_t* kDetected = L"KESP,2.0\n";

  static bool Point(_CKespIEEE* ieee, Verdict& verdict) {
    Driver();
    return verdict.Succeeded(ieee->put_PrimaryAddress(5), "PrimaryAddress") &&
           verdict.Succeeded(ieee->put_EOSChar(Text(L"10").get()), "EOSChar") &&
           verdict.Succeeded(ieee->put_TimeOutSecs(to300ms), "TimeOutSecs");
  }
  static void Recover(_CKespCommObj*, _CKespIEEE*, Verdict&) {}
  static void LookAfterwards(Verdict& verdict) {
    verdict.Expect(Driver().OpenDescriptors() == 0, "a device is left open");
  }
};

class GpibQuery : public TransportScenario<GpibStage> {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    QueryGives(comm_.Get(), L"*IDN?", clients::kIdentity, verdict);
    UpdateWorks(comm_.Get(), L"SETP 20", verdict);
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeGpibQuery() {
  return std::make_unique<GpibQuery>();
}
std::unique_ptr<Scenario> MakeGpibDetection() {
  return std::make_unique<DetectionScenario<GpibStage>>();
}

}  // namespace kesp::faults
