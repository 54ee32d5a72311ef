// Failures swept over the serial transport: whatever fails, promises are kept, nothing hangs, and the object
// goes on working.
#include <gtest/gtest.h>

#include <algorithm>

#include "serial/kesp_com_port_fixture.h"
#include "support/failing_allocation_fake.h"
#include "support/fault_sweep_fixture.h"

namespace kesp {
namespace {

// A look at the clock takes 50 ms.
class SerialStage final : public CKespCOMPort3Fixture, public FaultStage {
 public:
  using CKespCOMPort3Fixture::environment_;
  using CKespCOMPort3Fixture::port_;
  using CKespCOMPort3Fixture::ports_;

  SerialStage() {
    environment_.clock.SetStepPerReading(50);
    AllowRates(4, 7, 6);
    port_.SetTimeOut(400);
    port_.SetCheckNonAscii(false);
    port_.SetCreateLogFile(true);
    ports_.line.Answer("t\r", "1.5\r\n");
  }

  void TestBody() override {}

  std::vector<FaultySeam> Seams() override {
    return {{"serial control", ports_.line.faults},
            {"ports", ports_.faults},
            {"files out of memory", environment_.files.faults},
            {"files", environment_.files.faults, [this] { environment_.files.answers_failure = true; }},
            {"settings files out of memory", environment_.settings.faults},
            {"settings files", environment_.settings.faults,
             [this] { environment_.settings.answers_failure = true; }},
            {"GUIDs", environment_.guids.faults},
            {"dialog", dialog_.faults},
            {"user surface", environment_.user.faults}};
  }

  void ExpectWhole() override {
    EXPECT_EQ(port_.TimeOut(), 400);
    EXPECT_FALSE(port_.CheckNonAscii());
    EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_KESP);
    EXPECT_EQ(port_.MinBaudRate(), Rate(4));
    EXPECT_EQ(port_.MaxBaudRate(), Rate(7));
    if (Undisturbed() || !keeps_pointer_) {
      EXPECT_EQ(environment_.user.pointer(), MousePointer::kDefault);
    }
    EXPECT_TRUE(shows_boxes_ || environment_.user.boxes().empty());
    ExpectWholeLog(environment_.files.Content(port_.LogFilename()));
  }

  void ExpectWorking() override {
    std::wstring reply;
    EXPECT_EQ(RaisedBy([&] {
                port_.ClosePort();
                port_.OpenPort();
                port_.WriteLine(L"t");
                port_.ReadLine(reply);
                port_.ClosePort();
              }),
              Raised());
    EXPECT_EQ(reply, L"1.5");
    EXPECT_FALSE(ports_.line.open);
  }

  // Preparations.
  void Open() { port_.OpenPort(); }
  void Write() {
    port_.OpenPort();
    port_.WriteLine(L"t");
  }
  void WriteShowingBoxes() {
    Write();
    shows_boxes_ = true;
  }
  void WithSwitch() {
    port_.SetUseSmartSwitch(true);
    port_.SmartSwitch()->SetSSPort(L"3");
  }
  void WithModem() {
    port_.SetUseRFModem(true);
    port_.SetInstrAddr(26);
    ports_.line.ConfirmAddress26();
    ports_.line.Answer("*IDN?\r", "KESP\r");
    for (const char* question : {"ATSH\r", "ATSL\r", "ATPL\r", "ATID\r", "ATCH\r", "ATMY\r", "ATCT\r"}) {
      ports_.line.Answer(question, "1F\r");
    }
    events_.record = [this](const std::wstring& event) { heard_.push_back(event); };
  }
  void WithOpenModem() {
    WithModem();
    port_.OpenPort();
  }
  void WithAnswerAtALowerRate() {
    ports_.line.on_output = [this](const std::string& written, const std::wstring& settings) {
      if (written == "*VER\r" && settings.starts_with(L"2400")) ports_.line.Arrive("v1\r\n", 60);
      if (settings.starts_with(L"4800")) ports_.line.Arrive("\xFF\r\n", 60);
    };
  }
  void ShowingBoxes() { shows_boxes_ = true; }

  // Expectations.
  void ExpectClosed() { EXPECT_FALSE(ports_.line.open); }
  // Only one call of the control has failed.
  bool OnlyOneCallFailed() { return ports_.line.faults.failures() == 1; }
  // From the first command on the modem is in its command mode, and is told once to leave it. It may be told
  // so before that, too: when the port fails while the confirmation of "+++" is awaited.
  void ExpectCommandModeLeft(const std::wstring& first_command) {
    if (!Undisturbed() && !OnlyOneCallFailed()) return;
    EXPECT_GE(Begun(L"ATCN\r"), Begun(first_command));
    EXPECT_LE(Begun(L"ATCN\r"), Begun(L"+++"));
  }
  // What fails in the log is no failure of the operation. The settings file may be written in vain.
  bool DoneUnlessDisturbed() {
    return ports_.line.faults.failures() == 0 && allocations.calls.failures() == 0;
  }
  std::wstring Target() const { return environment_.settings.Value(kModemFile, L"COM1", L"InstrAddr"); }

  const std::wstring help_file_ = L"C:\\Kesp\\a help file.chm";
  std::wstring result_;
  BinaryValue value_;
  bool done_ = false;
  RadioModemSettings modem_{L"a", L"b", L"c", L"d", L"e", L"f"};
  bool keeps_pointer_ = false;  // when a failure is shown

 private:
  // How often writing this command was begun.
  std::ptrdiff_t Begun(const std::wstring& command) const {
    return std::count(heard_.begin(), heard_.end(), L"WriteBegin(" + command + L",1)");
  }

  bool shows_boxes_ = false;
  Lines heard_;
};

using Case = FaultCase<SerialStage>;

const Case kCases[] = {
    {.name = "Create",
     .run =
         [](SerialStage& stage) { const CKespCOMPort3 other(stage.environment_.environment, stage.ports_); },
     .numbers = {0, 7, 51}},
    {.name = "SetLogFilename",
     .run = [](SerialStage& stage) { stage.port_.SetLogFilename(L"C:\\Temp\\conversation.log"); },
     .numbers = {0}},
    {.name = "OpenPort",
     .run = [](SerialStage& stage) { stage.port_.OpenPort(); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - OpenPort() ["},
    {.name = "OpenPortWithSwitch",
     .run = [](SerialStage& stage) { stage.port_.OpenPort(); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - OpenPort() [",
     .prepare = &SerialStage::WithSwitch},
    {.name = "OpenPortWithDongle",
     .run = [](SerialStage& stage) { stage.port_.OpenPort(); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - OpenPort() [",
     .prepare = [](SerialStage& stage) { stage.port_.SetUseIRDongle(true); }},
    {.name = "ClosePort",
     .run = [](SerialStage& stage) { stage.port_.ClosePort(); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - ClosePort() [",
     .prepare =
         [](SerialStage& stage) {
           stage.WithSwitch();
           stage.Write();
         },
     .check = &SerialStage::ExpectClosed},
    {.name = "ClearBuffers",
     .run = [](SerialStage& stage) { stage.port_.ClearBuffers(); },
     .numbers = {0, 8012},
     .source = L"commCOMControl",
     .prepare = &SerialStage::Open},
    {.name = "WriteLine",
     .run = [](SerialStage& stage) { stage.port_.WriteLine(L"t", {}, {}, true); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - WriteLine() [",
     .prepare = &SerialStage::Open},
    {.name = "ReadLine",
     .run = [](SerialStage& stage) { stage.port_.ReadLine(stage.result_); },
     .numbers = {0, 8012},
     .source = L"CKespCOMPort3 - ReadLine() [",
     .prepare = &SerialStage::Write},
    {.name = "ReadLineBinaryAsText",
     .run = [](SerialStage& stage) { stage.port_.ReadLineBinary(stage.value_); },
     .numbers = {0},
     .prepare = &SerialStage::WriteShowingBoxes},
    {.name = "ReadLineBinary",
     .run = [](SerialStage& stage) { stage.port_.ReadLineBinary(stage.value_); },
     .numbers = {0},
     .prepare =
         [](SerialStage& stage) {
           stage.port_.SetInputMode(EInputMode::imBinary);
           stage.WriteShowingBoxes();
         }},
    {.name = "Download",
     .run = [](SerialStage& stage) { stage.port_.Download(stage.result_); },
     .numbers = {0},
     .prepare = &SerialStage::WriteShowingBoxes},
    {.name = "PortExists",
     .run = [](SerialStage& stage) { stage.port_.PortExists(1); },
     .numbers = {0},
     .prepare = &SerialStage::ShowingBoxes},
    {.name = "IsPortAvailable",
     .run = [](SerialStage& stage) { stage.port_.IsPortAvailable(1); },
     .numbers = {0},
     .prepare = &SerialStage::ShowingBoxes},
    {.name = "AutoDetect",
     .run = [](SerialStage& stage) { stage.port_.AutoDetect(stage.result_); },
     .numbers = {0},
     .prepare = &SerialStage::WithAnswerAtALowerRate,
     .check =
         [](SerialStage& stage) {
           stage.ExpectClosed();
           EXPECT_TRUE(!stage.Undisturbed() || stage.result_ == L"v1");
           stage.port_.SetBaudRate(Rate(6));
         }},
    {.name = "AutoDetectWithModem",
     .run = [](SerialStage& stage) { stage.port_.AutoDetect(stage.result_); },
     .numbers = {0},
     .prepare = &SerialStage::WithModem,
     .check =
         [](SerialStage& stage) {
           stage.ExpectClosed();
           EXPECT_EQ(stage.port_.BaudRate(), Rate(6));
           stage.ExpectCommandModeLeft(L"ATDH0\r");
         }},
    // Only a failure to leave the command mode comes when everything is read; it counts as one all the same.
    {.name = "RFReadModemSettings",
     .run = [](SerialStage& stage) { stage.done_ = stage.port_.RFReadModemSettings(stage.modem_); },
     .numbers = {0},
     .prepare = &SerialStage::WithModem,
     .check =
         [](SerialStage& stage) {
           EXPECT_TRUE(stage.done_ || !stage.DoneUnlessDisturbed());
           EXPECT_EQ(stage.modem_.serial, stage.done_ ? L"1F1F" : L"a");
           EXPECT_EQ(stage.modem_.timeout, stage.done_ ? L"3100" : L"f");
           stage.ExpectCommandModeLeft(L"ATSH\r");
         }},
    {.name = "RFWriteModemInstrAddress",
     .run = [](SerialStage& stage) { stage.done_ = stage.port_.RFWriteModemInstrAddress(26); },
     .numbers = {0},
     .prepare = &SerialStage::WithOpenModem,
     .check =
         [](SerialStage& stage) {
           EXPECT_TRUE(stage.ports_.line.open);
           EXPECT_TRUE(stage.done_ || !stage.Undisturbed());
           // It is not remembered before it is done.
           EXPECT_TRUE(stage.done_ || stage.Target() != L"26");
           stage.ExpectCommandModeLeft(L"ATDH0\r");
         }},
    {.name = "RFWriteModemSettings",
     .run = [](SerialStage& stage) { stage.done_ = stage.port_.RFWriteModemSettings(1, 2, 3, 400, true); },
     .numbers = {0},
     .prepare = &SerialStage::WithOpenModem,
     .check =
         [](SerialStage& stage) {
           EXPECT_TRUE(stage.done_ || !stage.DoneUnlessDisturbed());
           stage.ExpectCommandModeLeft(L"ATID1\r");
         }},
    // After a failure the pointer stays busy, on purpose.
    {.name = "TestSmartSwitch",
     .run = [](SerialStage& stage) { stage.port_.TestSmartSwitch(); },
     .numbers = {0},
     .prepare =
         [](SerialStage& stage) {
           stage.WithSwitch();
           stage.ShowingBoxes();
           stage.keeps_pointer_ = true;
         },
     .check = [](SerialStage& stage) { stage.port_.SmartSwitch()->SetSSPort(L"3"); }},
    // 7: even the error box fails.
    {.name = "Edit",
     .run = [](SerialStage& stage) { stage.port_.Edit({}, stage.help_file_, 5); },
     .numbers = {0, 7},
     .prepare =
         [](SerialStage& stage) {
           stage.WithSwitch();
           stage.ShowingBoxes();
           stage.Open();
         },
     .check = &SerialStage::ExpectClosed},
};

class CKespCOMPort3FaultsTest : public testing::TestWithParam<Case> {};

TEST_P(CKespCOMPort3FaultsTest, AnyCallFails_PromisesAreKeptAndObjectWorksOn) {
  SweepSeams(GetParam().Operation());
}

TEST_P(CKespCOMPort3FaultsTest, AnyAllocationFails_PromisesAreKeptAndObjectWorksOn) {
  SweepAllocations(GetParam().Operation());
}

INSTANTIATE_TEST_SUITE_P(Each, CKespCOMPort3FaultsTest, testing::ValuesIn(kCases), NameOf<SerialStage>);

}  // namespace
}  // namespace kesp
