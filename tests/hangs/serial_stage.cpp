// The calls of a serial transport.
#include "tests/hangs/serial_stage.h"

#include <optional>

namespace kesp::hangs {

using clients::Text;
using clients::Write;

namespace {

// A WriteLine that has lasted so long is stuck.
constexpr Milliseconds kStuck{700};

VARIANT_BOOL Boolean(bool value) {
  return value ? VARIANT_TRUE : VARIANT_FALSE;
}

}  // namespace

SerialStage::SerialStage() : Stage(csRS232), events(clients::EventRecorder::Make(__uuidof(__CKespCOMPort3))) {
  connection_ = std::make_unique<clients::Connection>(port.Get(), __uuidof(__CKespCOMPort3), events.Get());
  const auto number = static_cast<short>(clients::SerialWire::PortNumber());
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_Port, number), S_OK);
  SetRate(br921600);
  SetTimeOut(kSerialTimeOut);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::SetInputMode, imBinary), S_OK);
  EXPECT_EQ(Write(comm, &_CKespCommObj::put_BinaryTimeoutms, static_cast<long>(kBinaryGap.count())), S_OK);
}

void SerialStage::SetRate(EKespBaudRate3 rate) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MinBaudRate, brNone), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MaxBaudRate, rate), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_MinBaudRate, rate), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_BaudRate, rate), S_OK);
}

void SerialStage::SetTimeOut(Milliseconds time) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_TimeOut, static_cast<long>(time.count())), S_OK);
}

void SerialStage::SetMode(ReplyMode mode) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_TerminateOnLF, Boolean(mode == ReplyMode::kToLf)), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_StripCRLF, Boolean(mode != ReplyMode::kRaw)), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_CheckNonAscii, Boolean(mode != ReplyMode::kRaw)), S_OK);
}

void SerialStage::UseSwitch(bool use) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_UseSmartSwitch, Boolean(use)), S_OK);
  const auto box = clients::ReadObject(port, &_CKespCOMPort3::get_SmartSwitch);
  EXPECT_EQ(Write(box, &_CKespSmartSwitch3::put_SSPort, std::wstring(use ? L"B" : L"")), S_OK);
}

void SerialStage::OnFullLine(const std::function<void()>& act) {
  peer.StopTaking();
  const auto stuck_since = std::make_shared<std::optional<Clock::time_point>>();
  events->handlers[L"WriteUpdate"] = [this, act, stuck_since](DISPPARAMS&) {
    if (!*stuck_since) *stuck_since = Clock::now();
    if (Clock::now() < **stuck_since + kStuck) return;
    events->handlers.clear();
    act();
  };
}

void SerialStage::ReleaseTransport() {
  connection_.reset();
  port.Reset();
}

Outcome SerialStage::OpenPort() {
  return Answering([&](VARIANT_BOOL* answer) { return port->OpenPort(answer); });
}

Outcome SerialStage::ClosePort() {
  return Doing([&] { return port->ClosePort(); });
}

Outcome SerialStage::ClearBuffers() {
  return Doing([&] { return port->ClearBuffers(); });
}

Outcome SerialStage::WriteLine(const std::string& cmd, bool cr_before) {
  const Text text(TextOfBytes(cmd));
  return Answering([&](VARIANT_BOOL* answer) {
    return port->WriteLine(text.get(), nullptr, nullptr, Boolean(cr_before), answer);
  });
}

Outcome SerialStage::ReadLine() {
  return Reading([&](BSTR* reply, VARIANT_BOOL* answer) { return port->ReadLine(reply, answer); });
}

Outcome SerialStage::ReadLineBinary() {
  return ReadingBytes([&](VARIANT* reply, VARIANT_BOOL* answer) {
    return port->ReadLineBinary(reply, static_cast<long>(kBinaryGap.count()), answer);
  });
}

Outcome SerialStage::Download() {
  return Reading([&](BSTR* reply, VARIANT_BOOL* answer) { return port->Download(reply, answer); });
}

Outcome SerialStage::AutoDetect() {
  return Reading([&](BSTR* reply, VARIANT_BOOL* answer) {
    return port->AutoDetect(reply, dlSCPIOnly, nullptr, answer);
  });
}

void JudgeAfterwards(Trial& trial, SerialStage& stage) {
  if (stage.port == nullptr) return;
  // One that was pulled, before it is back.
  stage.ClosePort();
  stage.peer.Recover();
  stage.UseSwitch(false);
  trial.Require("OpenPort", stage.OpenPort().result == "True");
  const std::string token = trial.NewToken();
  trial.JudgeQuery(stage.Exchange(token), "=" + token);
}

}  // namespace kesp::hangs
