// Queries and the search for a device on the simulated bus.
#include "tests/clients/gpib_fixture.h"
#include "tests/clients/simulated_driver.h"
#include "tests/faults/client.h"
#include "tests/faults/line_scenarios.h"

namespace kesp::faults {

namespace {

class GpibScenario : public Scenario {
 public:
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    ieee_ = Use<_CKespIEEE>(comm_.Get(), csIEEE, verdict);
    verdict.Expect(ieee_ != nullptr, "there is no transport");
    if (ieee_ == nullptr || !Point(verdict)) return;
    MustQuery(comm_.Get(), L"*IDN?", clients::kIdentity, verdict);
    verdict.Expect(Driver().OpenDescriptors() == 0, "a device is left open");
  }

 protected:
  bool Begin(Verdict& verdict) {
    Driver();
    comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
    if (comm_ != nullptr) ieee_ = Use<_CKespIEEE>(comm_.Get(), csIEEE, verdict);
    return ieee_ != nullptr && Point(verdict);
  }

  ComPtr<_CKespCommObj> comm_;
  ComPtr<_CKespIEEE> ieee_;

 private:
  static const clients::SimulatedDriver& Driver() {
    static const clients::SimulatedDriver driver;
    static const bool is_loaded = (driver.Load(clients::Bus()), true);
    (void)is_loaded;
    return driver;
  }

  bool Point(Verdict& verdict) const {
    return verdict.Succeeded(ieee_->put_PrimaryAddress(5), "PrimaryAddress") &&
           verdict.Succeeded(ieee_->put_EOSChar(Text(L"10").get()), "EOSChar") &&
           verdict.Succeeded(ieee_->put_TimeOutSecs(to300ms), "TimeOutSecs");
  }
};

class GpibQuery : public GpibScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    QueryGives(comm_.Get(), L"*IDN?", clients::kIdentity, verdict);
    UpdateWorks(comm_.Get(), L"SETP 20", verdict);
  }
};

class GpibDetection : public GpibScenario {
 public:
  void Run(Verdict& verdict) override {
    if (!Begin(verdict)) return;
    Text reply(L"before");
    VARIANT_BOOL found = VARIANT_FALSE;
    if (!verdict.Succeeded(comm_->DetectInstrument(reply.in_out(), dlCommonCommands, &found),
                           "DetectInstrument")) {
      return;
    }
    verdict.Expect(found != VARIANT_TRUE || reply.str() == L"KESP,2.0\n",
                   "DetectInstrument gives another answer");
  }
};

}  // namespace

std::unique_ptr<Scenario> MakeGpibQuery() {
  return std::make_unique<GpibQuery>();
}
std::unique_ptr<Scenario> MakeGpibDetection() {
  return std::make_unique<GpibDetection>();
}

}  // namespace kesp::faults
