// The port is taken away in the middle of an operation: nothing hangs, a box shows what has no other way to
// be told, and the port can be used again.
#include <gtest/gtest.h>

#include "tests/clients/serial_fixture.h"
#include "tests/win/box_reader.h"

namespace kesp::clients {
namespace {

class SerialPulledTest : public SerialEventsFixture {
 protected:
  void SetUp() override {
    MustOpen();
    SetTimeOut(kEndlessTimeOut);
  }
  // It must close without a complaint, and work when it is back.
  void TearDown() override {
    EXPECT_EQ(recorder_->handlers.size(), 0U) << "the port was not pulled";
    EXPECT_FALSE(Answer());
    EXPECT_EQ(RefusalOf(port_->ClosePort()), Refusal{});
    EXPECT_EQ(RefusalOf(OpenPort()),
              (Refusal{ControlError(8002), L"CKespCOMPort3 - OpenPort() [commCOMControl]",
                       L"Invalid port number"}));
    wire_.ResumeReading();
    wire_.Reconnect();
    EXPECT_TRUE(IsAvailable());
    MustOpen();
    EXPECT_EQ(WriteLine(L"back"), S_OK);
    EXPECT_EQ(wire_.Receive(5), "back\r");
  }

  void PullAt(const std::wstring& event) {
    recorder_->handlers[event] = [&](DISPPARAMS&) {
      recorder_->handlers.clear();
      wire_.Pull();
    };
  }
  // The box that tells so, which is closed.
  static void ExpectBox(BoxReader& reader, const std::wstring& action, const std::wstring& error) {
    EXPECT_EQ(reader.Contents().texts,
              (Lines{L"An error occurred while attempting to " + action + L".\r\nError: " + error}));
  }
};

// The line takes nothing, so that the transport waits for its output to leave.
TEST_F(SerialPulledTest, WhileALineIsWritten) {
  wire_.PauseReading();
  PullAt(L"WriteUpdate");
  EXPECT_EQ(RefusalOf(WriteLine(std::wstring(1 << 20, L'x'))),
            (Refusal{ControlError(8012), L"CKespCOMPort3 - WriteLine() [commCOMControl]",
                     L"The device is not open"}));
}

TEST_F(SerialPulledTest, InTheMiddleOfAReply) {
  PullAt(L"ReadUpdate");
  wire_.Send("12.3");
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ControlError(8020), L"CKespCOMPort3 - ReadLine() [commCOMControl]",
                     L"Error reading comm device"}));
  EXPECT_EQ(reply_.str(), L"12.3");
}

TEST_F(SerialPulledTest, WhileBytesAreAwaited) {
  PullAt(L"ReadBegin");
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(bytes_.type(), VT_EMPTY);
  ExpectBox(reader, L"read from COM" + SerialPortText(),
            L"8020 - Error reading comm device\r\n(commCOMControl)");
}

TEST_F(SerialPulledTest, WhileDataIsDownloaded) {
  PullAt(L"DownloadUpdate");
  wire_.Send("data");
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(Download(), S_OK);
  EXPECT_EQ(reply_.str(), L"data");
  ExpectBox(reader, L"download from COM" + SerialPortText(),
            L"8020 - Error reading comm device\r\n(commCOMControl)");
}

TEST_F(SerialPulledTest, WhileAModemIsAwaited_AndTheSwitchCannotBeTested) {
  PullAt(L"WriteEnd");
  EXPECT_EQ(port_->RFWriteModemInstrAddress(12, &answer_), S_OK);
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(port_->TestSmartSwitch(), S_OK);
  ExpectBox(reader, L"test SmartSwitch",
            L"8002 - Invalid port number\r\n(CKespCOMPort3 - OpenPort() [commCOMControl])");
}

TEST_F(SerialPulledTest, WhileAnInstrumentIsSought) {
  PullAt(L"ReadBegin");
  EXPECT_EQ(port_->AutoDetect(reply_.in_out(), dlAllCommands, Text(L"").get(), &answer_), S_OK);
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 2U) << "the next command finds no port";
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_TimeOut), kEndlessTimeOut);
}

}  // namespace
}  // namespace kesp::clients
