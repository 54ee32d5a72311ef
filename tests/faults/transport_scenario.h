// What the scenarios of each transport have in common. A Stage says which transport it is, at what it is
// pointed, and which identity its instrument tells.
#pragma once

#include "tests/faults/client.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

// A communication object that talks to the instrument of its stage.
template <class Stage>
class TransportScenario : public Scenario {
 public:
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    transport_ = Use<typename Stage::Transport>(comm_.Get(), Stage::kStyle, verdict);
    verdict.Expect(transport_ != nullptr, "there is no transport");
    if (transport_ == nullptr || !Stage::Point(transport_.Get(), verdict)) return;
    Stage::Recover(comm_.Get(), transport_.Get(), verdict);
    MustQuery(comm_.Get(), L"*IDN?", Stage::kIdentity, verdict);
    Stage::LookAfterwards(verdict);
  }

 protected:
  bool Begin(Verdict& verdict) {
    comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
    if (comm_ != nullptr) transport_ = Use<typename Stage::Transport>(comm_.Get(), Stage::kStyle, verdict);
    return transport_ != nullptr && Stage::Point(transport_.Get(), verdict);
  }
  // Looks for an instrument; the one that it finds must be that of the stage.
  void Detect(Verdict& verdict) {
    Text reply(L"before");
    VARIANT_BOOL found = VARIANT_FALSE;
    if (!verdict.Succeeded(comm_->DetectInstrument(reply.in_out(), Stage::kDetectedBy, &found),
                           "DetectInstrument")) {
      return;
    }
    verdict.Expect(found != VARIANT_TRUE || reply.str() == Stage::kDetected,
                   "DetectInstrument gives another answer");
  }

  ComPtr<_CKespCommObj> comm_;
  ComPtr<typename Stage::Transport> transport_;
};

template <class Stage>
class DetectionScenario : public TransportScenario<Stage> {
 public:
  void Run(Verdict& verdict) override {
    if (this->Begin(verdict)) this->Detect(verdict);
  }
};

}  // namespace kesp::faults
