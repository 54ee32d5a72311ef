// Sweeps over the serial transport: whichever call fails, promises are kept and nothing hangs.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

// An object with its own world, new for each round of a sweep. A look at the clock takes 50 ms.
struct Stage {
  Stage() {
    events.record = [this](const std::wstring& event) { heard.push_back(event); };
    environment.clock.SetStepPerReading(50);
    port.SetMaxBaudRate(Rate(7));
    port.SetMinBaudRate(Rate(4));
    port.SetBaudRate(Rate(6));
    port.SetTimeOut(400);
    port.SetCheckNonAscii(false);
  }

  void WithModem() {
    port.SetUseRFModem(true);
    port.SetInstrAddr(26);
    ports.line.ConfirmAddress26();
    for (const char* question : {"ATSH\r", "ATSL\r", "ATPL\r", "ATID\r", "ATCH\r", "ATMY\r", "ATCT\r"}) {
      ports.line.Answer(question, "1F\r");
    }
  }
  void WithOpenModem() {
    WithModem();
    port.OpenPort();
  }

  // How often writing this command was begun.
  std::ptrdiff_t Begun(const std::wstring& command) const {
    return std::count(heard.begin(), heard.end(), L"WriteBegin(" + command + L",1)");
  }

  // From the first command on the modem is in its command mode, and is told once to leave it. It may be told
  // so before that, too: when the port fails while the confirmation of "+++" is awaited.
  void ExpectCommandModeLeft(const std::wstring& first_command) const {
    EXPECT_GE(Begun(L"ATCN\r"), Begun(first_command));
    EXPECT_LE(Begun(L"ATCN\r"), Begun(L"+++"));
  }

  void ExpectSettingsKept() const {
    EXPECT_EQ(port.TimeOut(), 400);
    EXPECT_FALSE(port.CheckNonAscii());
    EXPECT_EQ(port.ControllerStyle(), EKespControllerStyle3::CS_KESP);
    EXPECT_EQ(port.MinBaudRate(), Rate(4));
    EXPECT_EQ(port.MaxBaudRate(), Rate(7));
    EXPECT_EQ(environment.user.pointer(), MousePointer::kDefault);
    EXPECT_TRUE(environment.user.boxes().empty());
  }

  std::wstring Target() const { return environment.settings.Value(kModemFile, L"COM1", L"InstrAddr"); }

  Lines heard;
  EnvironmentFake environment;
  CKespCOMPort3EventsFake events;
  SerialPortsFake ports{environment.clock};
  CKespCOMPort3 port{environment.environment, ports, &events};
};

using Step = std::function<void(Stage&)>;
// Told whether it runs undisturbed.
using Operation = std::function<void(Stage&, bool undisturbed)>;

// Runs the operation once undisturbed and then once for each call of the control that it made, with that call
// failing; `check` looks at what is left.
void SweepControl(const Step& prepare, const Operation& operation, const Step& check) {
  int calls = 0;
  for (int nth = 0; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    prepare(stage);
    const int before = stage.ports.line.faults.calls();
    if (nth != 0) stage.ports.line.FailCall(nth, 8012);
    EXPECT_NO_THROW(operation(stage, nth == 0));
    if (nth == 0) calls = stage.ports.line.faults.calls() - before;
    check(stage);
    stage.ExpectSettingsKept();
    if (testing::Test::HasFailure()) return;  // one report is enough
  }
  EXPECT_GT(calls, 20);
}

TEST(CKespCOMPort3FaultsTest, AutoDetect_AnyCallFails_PortIsClosed) {
  std::wstring buffer;
  SweepControl(
      [](Stage& stage) {
        stage.ports.line.on_output = [&stage](const std::string& written, const std::wstring& settings) {
          if (written == "*VER\r" && settings.starts_with(L"2400")) stage.ports.line.Arrive("v1\r\n", 60);
          if (settings.starts_with(L"4800")) stage.ports.line.Arrive("\xFF\r\n", 60);
        };
      },
      [&](Stage& stage, bool) { stage.port.AutoDetect(buffer); },
      [](Stage& stage) { EXPECT_FALSE(stage.ports.line.open); });
  EXPECT_EQ(buffer, L"v1");
}

TEST(CKespCOMPort3FaultsTest, AutoDetectWithModem_AnyCallFails_CommandModeIsLeftAndRateIsKept) {
  std::wstring buffer;
  SweepControl(
      [](Stage& stage) {
        stage.WithModem();
        stage.ports.line.Answer("*IDN?\r", "KESP\r");
      },
      [&](Stage& stage, bool) { stage.port.AutoDetect(buffer); },
      [](Stage& stage) {
        EXPECT_FALSE(stage.ports.line.open);
        EXPECT_EQ(stage.port.BaudRate(), Rate(6));
        stage.ExpectCommandModeLeft(L"ATDH0\r");
      });
}

// Only a failure to leave the command mode comes when everything is read; it counts as one all the same.
TEST(CKespCOMPort3FaultsTest, ReadModemSettings_AnyCallFails_FalseUntouchedAndCommandModeLeft) {
  SweepControl(
      &Stage::WithModem,
      [](Stage& stage, bool undisturbed) {
        RadioModemSettings settings{L"a", L"b", L"c", L"d", L"e", L"f"};
        EXPECT_EQ(stage.port.RFReadModemSettings(settings), undisturbed);
        EXPECT_EQ(settings.serial, undisturbed ? L"1F1F" : L"a");
        EXPECT_EQ(settings.timeout, undisturbed ? L"3100" : L"f");
      },
      [](Stage& stage) { stage.ExpectCommandModeLeft(L"ATSH\r"); });
}

TEST(CKespCOMPort3FaultsTest, WriteModemInstrAddress_AnyCallFails_NotRememberedAndCommandModeLeft) {
  SweepControl(
      &Stage::WithOpenModem,
      [](Stage& stage, bool undisturbed) {
        EXPECT_EQ(stage.port.RFWriteModemInstrAddress(26), undisturbed);
        EXPECT_EQ(stage.Target(), undisturbed ? L"26" : L"<none>");
      },
      [](Stage& stage) {
        EXPECT_TRUE(stage.ports.line.open);
        stage.ExpectCommandModeLeft(L"ATDH0\r");
      });
}

TEST(CKespCOMPort3FaultsTest, WriteModemSettings_AnyCallFails_FalseAndCommandModeLeft) {
  SweepControl(
      &Stage::WithOpenModem,
      [](Stage& stage, bool undisturbed) {
        EXPECT_EQ(stage.port.RFWriteModemSettings(1, 2, 3, 400, true), undisturbed);
      },
      [](Stage& stage) { stage.ExpectCommandModeLeft(L"ATID1\r"); });
}

TEST(CKespCOMPort3FaultsTest, SettingsFileFails_ModemOperationIsFalseAndInOrder) {
  // Reading what is remembered, and remembering.
  for (int nth = 1; nth <= 2; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    stage.WithOpenModem();
    stage.environment.settings.faults.Fail(nth);
    EXPECT_FALSE(stage.port.RFWriteModemInstrAddress(26));
    EXPECT_EQ(stage.ports.line.writes.size(), nth == 1 ? 0u : 5u);
    EXPECT_EQ(stage.Target(), L"<none>");
    stage.ExpectSettingsKept();
    EXPECT_TRUE(stage.port.RFWriteModemInstrAddress(26));
  }
}

TEST(CKespCOMPort3FaultsTest, LogCannotBeWritten_EveryOperationGoesOn) {
  int calls = 0;
  for (int nth = 0; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    const int before = stage.environment.files.faults.calls();
    if (nth != 0) stage.environment.files.faults.Fail(nth);
    stage.ports.line.Answer("t\r", "1.5\r\n");
    stage.port.SetCreateLogFile(true);
    std::wstring reply;
    EXPECT_TRUE(stage.port.OpenPort() && stage.port.WriteLine(L"t", {}, {}, true) &&
                stage.port.ReadLine(reply));
    stage.port.ClosePort();
    EXPECT_EQ(reply, L"1.5");
    if (nth == 0) calls = stage.environment.files.faults.calls() - before;
  }
  EXPECT_GE(calls, 10);
}

}  // namespace
}  // namespace kesp
