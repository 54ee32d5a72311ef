// Queries and the search for a device on the simulated bus.
#include "tests/clients/simulated_driver.h"
#include "tests/faults/scenarios.h"
#include "tests/faults/transport_scenario.h"

namespace kesp::faults {

namespace {

constexpr wchar_t kGpibIdentity[] = L"KESP,GP488,SIM48805,2.0\n";

const clients::SimulatedDriver& Driver() {
  static const clients::SimulatedDriver driver;
  static const bool is_loaded = (driver.Load(R"({"devices": [
    {"gpib": {"primary": 2}, "commands": {"*VER": "KESP,2.0"}},
    {"gpib": {"primary": 5}, "commands":
      {"*IDN?": "KESP,GP488,SIM48805,2.0", "SETP *": null, "ECHO*": [{"echo": true}]}}]})"),
                                 true);
  (void)is_loaded;
  return driver;
}

struct GpibStage {
  using Transport = _CKespIEEE;
  static constexpr ECommStyle kStyle = csIEEE;
  static constexpr EDetectLevel kDetectedBy = dlCommonCommands;
  static constexpr const wchar_t* kDetected = L"KESP,2.0\n";
  static constexpr const wchar_t* kReplyEnd = L"\n";

  static bool Point(_CKespIEEE* ieee, Verdict& verdict) {
    Driver();
    return verdict.Succeeded(ieee->put_PrimaryAddress(5), "PrimaryAddress") &&
           verdict.Succeeded(ieee->put_EOSChar(Text(L"10").get()), "EOSChar") &&
           // Otherwise a "1" ends a reply.
           verdict.Succeeded(ieee->put_SetEOS(VARIANT_FALSE), "SetEOS") &&
           verdict.Succeeded(ieee->put_TimeOutSecs(to300ms), "TimeOutSecs");
  }
  static IID Events() { return __uuidof(__CKespIEEE); }
  static HRESULT Open(_CKespIEEE* ieee, VARIANT_BOOL* answer) { return ieee->Initialize(answer); }
  static HRESULT Close(_CKespIEEE* ieee, VARIANT_BOOL* answer) { return ieee->Uninitialize(answer); }
  static HRESULT Write(_CKespIEEE* ieee, BSTR command, VARIANT_BOOL* answer) {
    return ieee->WriteLine(command, answer);
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
    QueryGives(comm_.Get(), L"*IDN?", kGpibIdentity, verdict);
    UpdateWorks(comm_.Get(), L"SETP 20", verdict);
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeGpibQuery() {
  return std::make_unique<GpibQuery>();
}
std::unique_ptr<Scenario> MakeGpibLines() {
  return std::make_unique<LinesScenario<GpibStage>>();
}
std::unique_ptr<Scenario> MakeGpibDetection() {
  return std::make_unique<DetectionScenario<GpibStage>>();
}

}  // namespace kesp::faults
