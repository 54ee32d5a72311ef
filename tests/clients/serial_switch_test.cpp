// The port switch on the serial line: its sequences, in which order, and its test.
#include <gtest/gtest.h>

#include "tests/clients/serial_fixture.h"
#include "tests/clients/temporary_file.h"
#include "tests/win/box_reader.h"

namespace kesp::clients {
namespace {

const std::string kRelease4 = "\x1B\x02\x04";
const std::string kRelease8 = "\x1B\x02\x02\x04";

class SerialSwitchTest : public SerialFixture {
 protected:
  SerialSwitchTest() {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_TRUE), S_OK);
    EXPECT_EQ(port_->get_SmartSwitch(&box_), S_OK);
  }
  void Want(const std::wstring& port) { EXPECT_EQ(Write(box_, &_CKespSmartSwitch3::put_SSPort, port), S_OK); }
  void SetStyle(ESmartSwitchStyle3 style) {
    EXPECT_EQ(Write(box_, &_CKespSmartSwitch3::put_Style, style), S_OK);
  }
  std::wstring Current() { return Read(box_, &_CKespSmartSwitch3::get_CurrentPort); }
  // What the box has got since the last time. All of it was written when the call returned.
  void ExpectWritten(const std::string& bytes) {
    EXPECT_EQ(wire_.Receive(bytes.size()), bytes);
    EXPECT_EQ(wire_.ReceiveUntilQuiet(Milliseconds(50)), "");
  }

  ComPtr<_CKespSmartSwitch3> box_;
};

TEST_F(SerialSwitchTest, FourPortBox_GetsThePortAsItIs) {
  SetStyle(ssBB4port);
  Want(L"3");
  MustOpen();
  ExpectWritten(kRelease4 +
                "\x1B\x02"
                "3\r");
  EXPECT_EQ(Current(), L"3");
  EXPECT_EQ(port_->ClosePort(), S_OK);
  ExpectWritten(kRelease4);
  EXPECT_EQ(Current(), L"");
}

TEST_F(SerialSwitchTest, LargerBoxes_GetTwoCharacters) {
  for (const ESmartSwitchStyle3 style : {ssBB6port, ssBB8port}) {
    SetStyle(style);
    Want(L"3");
    MustOpen();
    ExpectWritten(kRelease8 +
                  "\x1B\x02"
                  "03\r");
    EXPECT_EQ(port_->ClosePort(), S_OK);
    ExpectWritten(kRelease8);
    Want(L"12");
    MustOpen();
    ExpectWritten(kRelease8 +
                  "\x1B\x02"
                  "12\r");
    EXPECT_EQ(port_->ClosePort(), S_OK);
    ExpectWritten(kRelease8);
  }
}

TEST_F(SerialSwitchTest, NoPortWanted_IsReleased) {
  MustOpen();
  ExpectWritten(kRelease8);
  EXPECT_EQ(port_->ClosePort(), S_OK);
  ExpectWritten(kRelease8);
}

TEST_F(SerialSwitchTest, OpenedTwice_IsSelectedOnce) {
  Want(L"B");
  MustOpen();
  ExpectWritten(kRelease8 +
                "\x1B\x02"
                "0B\r");
  MustOpen();
  ExpectWritten("");
  EXPECT_EQ(Current(), L"B");
}

TEST_F(SerialSwitchTest, AnotherPortWanted_FirstIsReleasedAtTheNextOpening) {
  Want(L"B");
  MustOpen();
  ExpectWritten(kRelease8 +
                "\x1B\x02"
                "0B\r");
  Want(L"C");
  ExpectWritten("");
  EXPECT_EQ(Current(), L"B");
  MustOpen();
  ExpectWritten(kRelease8 +
                "\x1B\x02"
                "0C\r");
  EXPECT_EQ(Current(), L"C");
}

TEST_F(SerialSwitchTest, NotUsed_WritesNothing) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_FALSE), S_OK);
  Want(L"B");
  MustOpen();
  EXPECT_EQ(port_->ClosePort(), S_OK);
  ExpectWritten("");
  EXPECT_EQ(Current(), L"");
}

TEST_F(SerialSwitchTest, ObjectsEnd_ReleasesThePort) {
  Want(L"B");
  MustOpen();
  ExpectWritten(kRelease8 +
                "\x1B\x02"
                "0B\r");
  port_.Reset();
  ExpectWritten(kRelease8);
  EXPECT_EQ(Current(), L"") << "the box may outlive its line";
}

TEST_F(SerialSwitchTest, Log_HoldsTheSequences) {
  const TemporaryFile log;
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_LogFilename, log.path()), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_TRUE), S_OK);
  SetStyle(ssBB4port);
  Want(L"3");
  MustOpen();
  EXPECT_EQ(log.Messages(),
            (std::vector<std::wstring>{L"Opening COM port " + SerialPortText() + L" with settings 9600,N,8,1",
                                       L"Clearing buffers...", L"Closing SmartSwitch port (\x1B\x02\x04)",
                                       L"Clearing buffers...",
                                       L"Selecting SmartSwitch port 3 (\x1B\x02"
                                       L"3\r)",
                                       L"Clearing buffers..."}));
}

TEST_F(SerialSwitchTest, Test_StepsThroughThePorts) {
  SetStyle(ssBB4port);
  std::string expected = kRelease4;
  for (const std::string port : {"A", "B", "C", "D"}) expected += kRelease4 + "\x1B\x02" + port + "\r";
  expected += kRelease4;
  const DWORD start = GetTickCount();
  EXPECT_EQ(port_->TestSmartSwitch(), S_OK);
  EXPECT_GE(GetTickCount() - start, 4U * 200U);
  ExpectWritten(expected);
  EXPECT_EQ(Read(box_, &_CKespSmartSwitch3::get_SSPort), L"D");
  EXPECT_EQ(Current(), L"");
  EXPECT_TRUE(IsAvailable());
}

TEST_F(SerialSwitchTest, TestOfAMissingPort_IsToldInABox) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  BoxReader reader(L"Kesp Communications Error", Press(IDOK));
  EXPECT_EQ(port_->TestSmartSwitch(), S_OK);
  EXPECT_EQ(reader.Contents().texts,
            (std::vector<std::wstring>{L"An error occurred while attempting to test SmartSwitch.\r\n"
                                       L"Error: 8002 - Invalid port number\r\n"
                                       L"(CKespCOMPort3 - OpenPort() [commCOMControl])"}));
}

}  // namespace
}  // namespace kesp::clients
