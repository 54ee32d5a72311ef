// An IEEE-488 transport, by itself or in a communication object, and the bus of the simulated driver.
#pragma once

#include "tests/clients/simulated_driver.h"
#include "tests/hangs/stage.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {

// to300ms, and the second that a detection gives each command.
inline constexpr Milliseconds kDriverWait{300};
inline constexpr Milliseconds kDriverDetectionWait{1000};

// The addresses of a device that is well, of none, and of five that leave when they are told to.
inline constexpr short kWellAddress = 5;
inline constexpr short kMissingAddress = 9;
inline constexpr short kFirstToLose = 10;

// With its bus (gpib_stage.cpp), which is loaded once: the library registers each thread with the driver
// once.
const clients::SimulatedDriver& TheDriver();

class GpibStage final : public Stage {
 public:
  GpibStage() : Stage(csIEEE) {
    TheDriver();
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_EOSChar, std::wstring(L"10")), S_OK);
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_SetEOS, VARIANT_FALSE), S_OK);
    SetTimeOut(to300ms);
    PointAt(kWellAddress);
  }

  void PointAt(short address) {
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_PrimaryAddress, address), S_OK);
  }
  void SetTimeOut(ETimeOutSecs code) {
    EXPECT_EQ(clients::Write(device, &_CKespIEEE::put_TimeOutSecs, code), S_OK);
  }

  Outcome Initialize() {
    return Answering([&](VARIANT_BOOL* answer) { return device->Initialize(answer); });
  }
  Outcome Uninitialize() {
    return Answering([&](VARIANT_BOOL* answer) { return device->Uninitialize(answer); });
  }
  Outcome WriteLine(const std::string& cmd) override {
    const clients::Text text(TextOfBytes(cmd));
    return Answering([&](VARIANT_BOOL* answer) { return device->WriteLine(text.get(), answer); });
  }
  Outcome ReadLine() override {
    return Reading([&](BSTR* reply, VARIANT_BOOL* answer) { return device->ReadLine(reply, answer); });
  }
  Outcome AutoDetect(ESearchOption option) {
    return Reading([&](BSTR* reply, VARIANT_BOOL* answer) {
      return device->AutoDetect(reply, dlSCPIOnly, option, answer);
    });
  }

  clients::ComPtr<_CKespIEEE> device = Transport<_CKespIEEE>();

 private:
  void ReleaseTransport() override { device.Reset(); }
};

// Cells of their own kind.
void AddGpibDriverCells(Cells& cells);

// The same object asks the device that is well, by an operation or in single steps.
void JudgeAfterwards(Trial& trial, GpibStage& stage, bool with_operation);

}  // namespace kesp::hangs
