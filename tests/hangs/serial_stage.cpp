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

short ThisPort() {
  return static_cast<short>(clients::SerialWire::PortNumber());
}

// The last one is noted.
short NewModemAddress() {
  static short address = 100;
  return ++address;
}

}  // namespace

SerialStage::SerialStage() : Stage(csRS232), events(clients::EventRecorder::Make(__uuidof(__CKespCOMPort3))) {
  connection_ = std::make_unique<clients::Connection>(port.Get(), __uuidof(__CKespCOMPort3), events.Get());
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_Port, ThisPort()), S_OK);
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

void SerialStage::UseAdapter(bool use) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_UseIRDongle, Boolean(use)), S_OK);
}

void SerialStage::UseModem(bool use) {
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_UseRFModem, Boolean(use)), S_OK);
  EXPECT_EQ(Write(port, &_CKespCOMPort3::put_InstrAddr, NewModemAddress()), S_OK);
}

void SerialStage::UseFlowControl(bool use) {
  const auto set_style = [this](EKespControllerStyle3 style) {
    EXPECT_EQ(Write(port, &_CKespCOMPort3::put_ControllerStyle, style), S_OK);
  };
  if (use) {
    // One style turns it on, and another leaves it on.
    set_style(CS_PRECIDIA);
    EXPECT_EQ(OpenPort().result, "True");
    ClosePort();
  }
  set_style(use ? CS_MAXSTREAM : CS_KESP);
  SetRate(br921600);
  SetTimeOut(kSerialTimeOut);
  SetMode(ReplyMode::kToLf);
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

Outcome SerialStage::OpenByOperation() {
  EXPECT_EQ(Write(comm, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  return Update("begin");
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

Outcome SerialStage::TestSmartSwitch() {
  return Doing([&] { return port->TestSmartSwitch(); });
}

Outcome SerialStage::PortExists() {
  return Answering([&](VARIANT_BOOL* answer) { return port->PortExists(ThisPort(), answer); });
}

Outcome SerialStage::IsPortAvailable() {
  return Answering([&](VARIANT_BOOL* answer) { return port->IsPortAvailable(ThisPort(), answer); });
}

Outcome SerialStage::Edit() {
  return Answering(
      [&](VARIANT_BOOL* answer) { return port->Edit(static_cast<EEditCommFlags>(0), nullptr, 0, answer); });
}

Outcome SerialStage::ReadModem() {
  Text texts[6];
  return Answering([&](VARIANT_BOOL* answer) {
    return port->RFReadModemSettings(texts[0].in_out(), texts[1].in_out(), texts[2].in_out(),
                                     texts[3].in_out(), texts[4].in_out(), texts[5].in_out(), answer);
  });
}

Outcome SerialStage::WriteModem() {
  return Answering([&](VARIANT_BOOL* answer) {
    return port->RFWriteModemSettings(13106, 12, 1, 1500, VARIANT_TRUE, answer);
  });
}

Outcome SerialStage::PointModem() {
  return Answering(
      [&](VARIANT_BOOL* answer) { return port->RFWriteModemInstrAddress(NewModemAddress(), answer); });
}

void JudgeAfterwards(Trial& trial, SerialStage& stage) {
  if (stage.port == nullptr) return;
  // One that was pulled, before it is back.
  stage.ClosePort();
  stage.peer.Recover();
  stage.UseSwitch(false);
  stage.UseAdapter(false);
  stage.UseModem(false);
  trial.Require("OpenPort", stage.OpenPort().result == "True");
  const std::string token = trial.NewToken();
  trial.JudgeQuery(stage.Exchange(token), "=" + token);
}

}  // namespace kesp::hangs
