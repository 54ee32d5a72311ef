// What the scenarios of each transport have in common. A Stage says which transport it is, at what it is
// pointed, and which identity its instrument tells.
#pragma once

#include "tests/clients/bare_sink.h"
#include "tests/faults/client.h"
#include "tests/faults/scenario.h"

namespace kesp::faults {

// A communication object that talks to the instrument of its stage.
template <class Stage>
class TransportScenario : public Scenario {
 public:
  // Asks what was never asked before, so that the late reply to another command shows.
  void WorkAgain(Verdict& verdict) override {
    if (comm_ == nullptr) return;
    transport_ = Use<typename Stage::Transport>(comm_.Get(), Stage::kStyle, verdict);
    verdict.Expect(transport_ != nullptr, "there is no transport");
    if (transport_ == nullptr || !Stage::Point(transport_.Get(), verdict)) return;
    Stage::Recover(comm_.Get(), transport_.Get(), verdict);
    const std::wstring echo = NewEcho();
    QueryGives(comm_.Get(), echo, echo + Stage::kReplyEnd, verdict);
    Stage::LookAfterwards(verdict);
  }

 protected:
  bool Begin(Verdict& verdict) {
    comm_ = Make<_CKespCommObj>(__uuidof(CKespCommObj), verdict);
    if (comm_ != nullptr) transport_ = Use<typename Stage::Transport>(comm_.Get(), Stage::kStyle, verdict);
    return transport_ != nullptr && Stage::Point(transport_.Get(), verdict);
  }
  // Looks for an instrument; the one that it finds must be that of the stage.
  void Detect(const wchar_t* expected, Verdict& verdict) {
    Text reply(L"before");
    VARIANT_BOOL found = kUnset;
    const HRESULT result = comm_->DetectInstrument(reply.in_out(), Stage::kDetectedBy, &found);
    if (!verdict.Answered(result, found, "DetectInstrument")) return;
    verdict.Expect(reply.str() == expected, "DetectInstrument gives another answer: " + Narrow(reply.str()));
  }

  ComPtr<_CKespCommObj> comm_;
  ComPtr<typename Stage::Transport> transport_;
};

// The search for an instrument, with a handler of its events.
template <class Stage>
class DetectionScenario : public TransportScenario<Stage> {
 public:
  void Run(Verdict& verdict) override {
    if (!this->Begin(verdict)) return;
    verdict.SucceededBarely(sink_.Connect(this->transport_.Get(), Stage::Events()), "Advise");
    this->Detect(Stage::kDetected, verdict);
    verdict.ExpectUndisturbed(sink_.heard() > 0, "the handler hears no events");
  }

 private:
  clients::BareSink sink_;
};

// The transport by itself with its log, left open for several exchanges.
template <class Stage>
class LinesScenario : public TransportScenario<Stage> {
 public:
  void Run(Verdict& verdict) override {
    if (!this->Begin(verdict) || !StartLog(verdict)) return;
    VARIANT_BOOL answer = kUnset;
    if (!verdict.Answered(Stage::Open(Transport(), &answer), answer, "opening")) return;
    for (int i = 0; i < 2 && Exchange(verdict); ++i) {
    }
    Close(verdict);
  }
  void WorkAgain(Verdict& verdict) override {
    if (this->transport_ != nullptr) Close(verdict);
    TransportScenario<Stage>::WorkAgain(verdict);
  }

 protected:
  auto* Transport() const { return this->transport_.Get(); }
  bool Write(const std::wstring& command, Verdict& verdict) const {
    VARIANT_BOOL answer = kUnset;
    const HRESULT result = Stage::Write(Transport(), Text(command).get(), &answer);
    return verdict.Answered(result, answer, "WriteLine");
  }
  void Close(Verdict& verdict) const {
    VARIANT_BOOL answer = kUnset;
    const HRESULT result = Stage::Close(Transport(), &answer);
    verdict.Answered(result, answer, "closing");
  }

 private:
  bool StartLog(Verdict& verdict) const {
    const Text log(TemporaryPath(L"kesp-faults-lines.txt"));
    return verdict.Succeeded(Transport()->put_LogFilename(log.get()), "LogFilename") &&
           verdict.Succeeded(Transport()->put_CreateLogFile(VARIANT_TRUE), "CreateLogFile");
  }
  virtual bool Exchange(Verdict& verdict) const {
    const std::wstring echo = NewEcho();
    if (!Write(echo, verdict)) return false;
    Text reply(L"before");
    VARIANT_BOOL answer = kUnset;
    if (!verdict.Answered(Transport()->ReadLine(reply.in_out(), &answer), answer, "ReadLine")) return false;
    verdict.Expect(reply.str() == echo + Stage::kReplyEnd,
                   "ReadLine gives another reply: " + Narrow(reply.str()));
    return true;
  }
};

}  // namespace kesp::faults
