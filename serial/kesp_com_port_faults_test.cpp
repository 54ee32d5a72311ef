// Sweeps over the serial transport: whichever call fails, promises are kept and nothing hangs.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kModemFile[] = L"C:\\Temp\\RFModem.ini";

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
    port.SetControllerStyle(EKespControllerStyle3::CS_MAXSTREAM);
    port.SetControllerStyle(EKespControllerStyle3::CS_KESP);
  }

  void WithModem() {
    port.SetUseRFModem(true);
    port.SetInstrAddr(26);
    for (const char* command : {"+++", "ATDH0\r", "ATDL1A\r", "ATWR\r", "ATCN\r"}) {
      ports.line.Answer(command, "OK\r");
    }
    for (const char* question : {"ATSH\r", "ATSL\r", "ATPL\r", "ATID\r", "ATCH\r", "ATMY\r", "ATCT\r"}) {
      ports.line.Answer(question, "1F\r");
    }
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

  Lines heard;
  EnvironmentFake environment;
  CKespCOMPort3EventsFake events;
  SerialPortsFake ports{environment.clock};
  CKespCOMPort3 port{environment.environment, ports, &events};
};

using Prepare = std::function<void(Stage&)>;
using Operation = std::function<void(Stage&)>;

// Runs the operation once undisturbed and then once for each call of the control that it made, with that call
// failing; `check` looks at what is left. Returns the number of calls.
int SweepControl(const Prepare& prepare, const Operation& operation, const Operation& check) {
  Stage undisturbed;
  prepare(undisturbed);
  const int before = undisturbed.ports.line.calls;
  operation(undisturbed);
  const int calls = undisturbed.ports.line.calls - before;
  for (int nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    prepare(stage);
    stage.ports.line.FailCall(nth, 8012);
    EXPECT_NO_THROW(operation(stage));
    check(stage);
    if (testing::Test::HasFailure()) return calls;  // one report is enough
  }
  return calls;
}

TEST(CKespCOMPort3FaultsTest, AutoDetect_AnyCallFails_SettingsReturnAndPortIsClosed) {
  const auto prepare = [](Stage& stage) {
    stage.ports.line.on_output = [&stage](const std::string& written, const std::wstring& settings) {
      if (written == "*VER\r" && settings.starts_with(L"2400")) stage.ports.line.Arrive("v1\r\n", 60);
      if (settings.starts_with(L"4800")) stage.ports.line.Arrive("\xFF\r\n", 60);
    };
  };
  std::wstring buffer;
  const auto check = [](const Stage& stage) {
    stage.ExpectSettingsKept();
    EXPECT_FALSE(stage.ports.line.open);
  };
  const int calls = SweepControl(
      prepare,
      [&](Stage& stage) {
        stage.port.AutoDetect(buffer);
        check(stage);
      },
      check);
  EXPECT_GT(calls, 100);
  EXPECT_EQ(buffer, L"v1");
}

TEST(CKespCOMPort3FaultsTest, AutoDetectWithModem_AnyCallFails_CommandModeIsLeftAndRateIsKept) {
  std::wstring buffer;
  const int calls = SweepControl(
      [](Stage& stage) {
        stage.WithModem();
        stage.ports.line.Answer("*IDN?\r", "KESP\r");
      },
      [&](Stage& stage) { stage.port.AutoDetect(buffer); },
      [](Stage& stage) {
        stage.ExpectSettingsKept();
        EXPECT_FALSE(stage.ports.line.open);
        EXPECT_EQ(stage.port.BaudRate(), Rate(6));
        stage.ExpectCommandModeLeft(L"ATDH0\r");
      });
  EXPECT_GT(calls, 30);
}

TEST(CKespCOMPort3FaultsTest, ReadModemSettings_AnyCallFails_FalseUntouchedAndCommandModeLeft) {
  int sweeps = 0;
  const auto operation = [&](Stage& stage) {
    RadioModemSettings settings{L"a", L"b", L"c", L"d", L"e", L"f"};
    const bool succeeded = stage.port.RFReadModemSettings(settings);
    // Only a failure to leave the command mode comes when everything is read; it counts as one all the same.
    EXPECT_EQ(succeeded, sweeps++ == 0);
    EXPECT_EQ(settings.serial, succeeded ? L"1F1F" : L"a");
    EXPECT_EQ(settings.timeout, succeeded ? L"3100" : L"f");
  };
  const int calls = SweepControl([](Stage& stage) { stage.WithModem(); }, operation,
                                 [](Stage& stage) {
                                   stage.ExpectSettingsKept();
                                   stage.ExpectCommandModeLeft(L"ATSH\r");
                                 });
  EXPECT_GT(calls, 40);
}

TEST(CKespCOMPort3FaultsTest, WriteModemInstrAddress_AnyCallFails_NotRememberedAndCommandModeLeft) {
  const auto prepare = [](Stage& stage) {
    stage.WithModem();
    stage.port.OpenPort();
  };
  int sweeps = 0;
  const auto operation = [&](Stage& stage) {
    const bool succeeded = stage.port.RFWriteModemInstrAddress(26);
    EXPECT_EQ(succeeded, sweeps++ == 0);
    EXPECT_EQ(stage.environment.settings.Value(kModemFile, L"COM1", L"InstrAddr"),
              succeeded ? L"26" : L"<none>");
  };
  const int calls = SweepControl(prepare, operation, [](Stage& stage) {
    stage.ExpectSettingsKept();
    EXPECT_TRUE(stage.ports.line.open);
    stage.ExpectCommandModeLeft(L"ATDH0\r");
  });
  EXPECT_GT(calls, 20);
}

TEST(CKespCOMPort3FaultsTest, WriteModemSettings_AnyCallFails_FalseAndStyleRestored) {
  int sweeps = 0;
  const int calls = SweepControl(
      [](Stage& stage) {
        stage.WithModem();
        stage.port.OpenPort();
      },
      [&](Stage& stage) { EXPECT_EQ(stage.port.RFWriteModemSettings(1, 2, 3, 400, true), sweeps++ == 0); },
      [](Stage& stage) {
        stage.ExpectSettingsKept();
        stage.ExpectCommandModeLeft(L"ATID1\r");
      });
  EXPECT_GT(calls, 20);
}

TEST(CKespCOMPort3FaultsTest, SettingsFileFails_ModemOperationIsFalseAndInOrder) {
  // Reading what is remembered, and remembering.
  for (int nth = 1; nth <= 2; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    stage.WithModem();
    stage.port.OpenPort();
    stage.environment.settings.ThrowAtCall(nth);
    EXPECT_FALSE(stage.port.RFWriteModemInstrAddress(26));
    EXPECT_EQ(stage.ports.line.writes.size(), nth == 1 ? 0u : 5u);
    EXPECT_EQ(stage.environment.settings.Value(kModemFile, L"COM1", L"InstrAddr"), L"<none>");
    stage.ExpectSettingsKept();
    EXPECT_TRUE(stage.port.RFWriteModemInstrAddress(26));
  }
}

TEST(CKespCOMPort3FaultsTest, SettingsFileFails_DetectionIsFalseAndPortClosed) {
  Stage stage;
  stage.WithModem();
  stage.ports.line.Answer("*IDN?\r", "KESP\r");
  stage.environment.settings.ThrowAtCall(1);
  std::wstring buffer = L"before";
  EXPECT_FALSE(stage.port.AutoDetect(buffer));
  EXPECT_EQ(buffer, L"before");
  EXPECT_FALSE(stage.ports.line.open);
  stage.ExpectSettingsKept();
}

TEST(CKespCOMPort3FaultsTest, LogCannotBeWritten_EveryOperationGoesOn) {
  Stage undisturbed;
  const auto converse = [](Stage& stage) {
    stage.ports.line.Answer("t\r", "1.5\r\n");
    stage.port.SetCreateLogFile(true);
    std::wstring reply;
    EXPECT_TRUE(stage.port.OpenPort() && stage.port.WriteLine(L"t", {}, {}, true) &&
                stage.port.ReadLine(reply));
    stage.port.ClosePort();
    EXPECT_EQ(reply, L"1.5");
  };
  const int before = undisturbed.environment.files.calls();
  converse(undisturbed);
  const int calls = undisturbed.environment.files.calls();
  ASSERT_GE(calls - before, 10);
  for (int nth = before + 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    Stage stage;
    stage.environment.files.ThrowAtCall(nth);
    converse(stage);
  }
}

}  // namespace
}  // namespace kesp
