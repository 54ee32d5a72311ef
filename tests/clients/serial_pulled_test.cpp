// The port is taken away in the middle of an operation: nothing hangs, and the port can be used again.
#include <gtest/gtest.h>

#include "tests/clients/serial_fixture.h"
#include "tests/win/box_reader.h"

namespace kesp::clients {
namespace {

class SerialPulledTest : public SerialEventsFixture {
 protected:
  void SetUp() override { MustOpen(); }
  // It must close without a complaint, and work when it is back.
  void TearDown() override {
    EXPECT_EQ(recorder_->handlers.size(), 0U) << "the port was not pulled";
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
  static std::vector<std::wstring> BoxTexts(const std::wstring& action) {
    return {L"An error occurred while " + action + SerialPortText() +
            L".\r\n"
            L"Error: 8020 - Error reading comm device\r\n"
            L"(commCOMControl)"};
  }
};

// The line takes nothing, so that the transport waits for its output to leave.
TEST_F(SerialPulledTest, WhileALineIsWritten) {
  wire_.PauseReading();
  recorder_->handlers[L"WriteUpdate"] = [&](DISPPARAMS& arguments) {
    EXPECT_GT(V_I2(&arguments.rgvarg[1]), 0);
    recorder_->handlers.clear();
    wire_.Pull();
  };
  const Refusal refusal = RefusalOf(WriteLine(std::wstring(1 << 20, L'x')));
  EXPECT_EQ(refusal, (Refusal{ControlError(8012), L"CKespCOMPort3 - WriteLine() [commCOMControl]",
                              L"The device is not open"}));
  EXPECT_EQ(recorder_->Count(L"WriteEnd"), 0U);
}

TEST_F(SerialPulledTest, BeforeALineIsWritten) {
  PullAt(L"WriteBegin");
  EXPECT_EQ(RefusalOf(WriteLine(L"t")).source, L"CKespCOMPort3 - WriteLine() [commCOMControl]");
}

TEST_F(SerialPulledTest, WhileAReplyIsAwaited) {
  SetTimeOut(kEndlessTimeOut);
  PullAt(L"ReadBegin");
  EXPECT_EQ(RefusalOf(ReadLine()),
            (Refusal{ControlError(8020), L"CKespCOMPort3 - ReadLine() [commCOMControl]",
                     L"Error reading comm device"}));
  EXPECT_FALSE(Answer());
}

TEST_F(SerialPulledTest, InTheMiddleOfAReply) {
  SetTimeOut(kEndlessTimeOut);
  PullAt(L"ReadUpdate");
  wire_.Send("12.3");
  EXPECT_EQ(ReadLine(), ControlError(8020));
  EXPECT_EQ(reply_.str(), L"12.3");
}

TEST_F(SerialPulledTest, WhileBytesAreAwaited) {
  SetTimeOut(kEndlessTimeOut);
  PullAt(L"ReadBegin");
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_FALSE(Answer());
  EXPECT_EQ(bytes_.type(), VT_EMPTY);
  EXPECT_EQ(reader.Contents().texts, BoxTexts(L"attempting to read from COM"));
}

TEST_F(SerialPulledTest, WhileDataIsDownloaded) {
  SetTimeOut(kEndlessTimeOut);
  PullAt(L"DownloadUpdate");
  wire_.Send("data");
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(Download(), S_OK);
  EXPECT_FALSE(Answer());
  EXPECT_EQ(reply_.str(), L"data");
  EXPECT_EQ(reader.Contents().texts, BoxTexts(L"attempting to download from COM"));
}

TEST_F(SerialPulledTest, WhileAnInstrumentIsSought) {
  PullAt(L"ReadBegin");
  EXPECT_EQ(port_->AutoDetect(reply_.in_out(), dlAllCommands, Text(L"").get(), &answer_), S_OK);
  EXPECT_FALSE(Answer());
  EXPECT_EQ(recorder_->Count(L"AutoDetectUpdate"), 2U) << "the next command finds no port";
  EXPECT_EQ(recorder_->Count(L"AutoDetectEnd"), 1U);
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_TimeOut), kSerialTimeOut);
}

TEST_F(SerialPulledTest, WhileAModemIsAwaited) {
  SetTimeOut(kEndlessTimeOut);
  PullAt(L"WriteEnd");
  EXPECT_EQ(port_->RFWriteModemInstrAddress(12, &answer_), S_OK);
  EXPECT_FALSE(Answer());
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_ControllerStyle), CS_KESP);
}

}  // namespace
}  // namespace kesp::clients
