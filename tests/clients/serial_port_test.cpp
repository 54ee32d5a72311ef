// The operations of the serial transport through its interface: each once with success, and once with a
// failure.
#include <gtest/gtest.h>

#include <iterator>
#include <thread>
#include <utility>
#include <vector>

#include "tests/clients/late_object.h"
#include "tests/clients/modem_lines.h"
#include "tests/clients/serial_fixture.h"
#include "tests/clients/temporary_file.h"
#include "tests/serial_win/bare_port.h"

namespace kesp::clients {
namespace {

class SerialPortTest : public SerialFixture {
 protected:
  // Whether the port of that number exists, and whether it can be opened.
  std::pair<bool, bool> Looked(short number) {
    VARIANT_BOOL exists = VARIANT_FALSE;
    VARIANT_BOOL available = VARIANT_FALSE;
    EXPECT_EQ(port_->PortExists(number, &exists), S_OK);
    EXPECT_EQ(port_->IsPortAvailable(number, &available), S_OK);
    return {exists == VARIANT_TRUE, available == VARIANT_TRUE};
  }
  static Refusal NotOpen(const std::wstring& source) {
    return {ControlError(8018), source, L"Operation valid only when the port is open"};
  }
  static Refusal TimedOut(const std::wstring& member) {
    return {ERR_READ_TIMEOUT, L"CKespCOMPort3 - " + member,
            L"Timeout waiting for instrument to respond to command on COM" + SerialPortText() + L"."};
  }
  void UseSwitch() {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(box_, &_CKespSmartSwitch3::put_Style, ssBB4port), S_OK);
  }

  ComPtr<_CKespSmartSwitch3> box_ = ReadObject(port_, &_CKespCOMPort3::get_SmartSwitch);
};

TEST_F(SerialPortTest, EveryPlainProperty_IsItsOwn) {
  using Port = _CKespCOMPort3;
  using Put = HRESULT (STDMETHODCALLTYPE Port::*)(VARIANT_BOOL);
  using Get = HRESULT (STDMETHODCALLTYPE Port::*)(VARIANT_BOOL*);
  const std::pair<Put, Get> switches[] = {{&Port::put_CheckNonAscii, &Port::get_CheckNonAscii},
                                          {&Port::put_TerminateOnLF, &Port::get_TerminateOnLF},
                                          {&Port::put_StripCRLF, &Port::get_StripCRLF},
                                          {&Port::put_CreateLogFile, &Port::get_CreateLogFile},
                                          {&Port::put_UseSmartSwitch, &Port::get_UseSmartSwitch},
                                          {&Port::put_UseIRDongle, &Port::get_UseIRDongle},
                                          {&Port::put_UseRFModem, &Port::get_UseRFModem},
                                          {&Port::put_UseRedirector, &Port::get_UseRedirector}};
  const auto values = [&] {
    std::vector<VARIANT_BOOL> read;
    for (const auto& [put, get] : switches) read.push_back(Read(port_, get));
    return read;
  };
  for (std::size_t i = 0; i < std::size(switches); ++i) {
    std::vector<VARIANT_BOOL> expected = values();
    expected[i] = expected[i] == VARIANT_TRUE ? VARIANT_FALSE : VARIANT_TRUE;
    EXPECT_EQ(Write(port_, switches[i].first, expected[i]), S_OK);
    EXPECT_EQ(values(), expected) << i;
  }
  EXPECT_EQ(Write(port_, &Port::put_InstrAddr, short{-26}), S_OK);
  EXPECT_EQ(Write(port_, &Port::put_RFModemPropHCID, 70000L), S_OK);
  EXPECT_EQ(Read(port_, &Port::get_InstrAddr), -26);
  EXPECT_EQ(Read(port_, &Port::get_RFModemPropHCID), 70000);
}

TEST_F(SerialPortTest, Opened_IsDeniedToOthersUntilItsEnd) {
  const short number = SerialPortNumber();
  EXPECT_EQ(Looked(number), std::pair(true, true));
  EXPECT_EQ(Looked(number), std::pair(true, true)) << "asking does not keep it";
  MustOpen();
  EXPECT_TRUE(Answer());
  EXPECT_EQ(Looked(number), std::pair(true, false)) << "held by the object itself";
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(port_->ClosePort(), S_OK);
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS});
  MustOpen();
  port_.Reset();
  EXPECT_EQ(BarePort(SerialWire::PortName()).error(), DWORD{ERROR_SUCCESS}) << "the object's end closes it";
}

TEST_F(SerialPortTest, HeldOrMissingPort_CannotBeOpened) {
  {
    const BarePort other(SerialWire::PortName());
    EXPECT_EQ(Looked(SerialPortNumber()), std::pair(true, false));
    EXPECT_EQ(
        RefusalOf(OpenPort()),
        (Refusal{ControlError(8005), L"CKespCOMPort3 - OpenPort() [commCOMControl]", L"Port already open"}));
    EXPECT_FALSE(Answer());
  }
  MustOpen();
  for (const short number : {kMissingPort, short{0}, short{-1}, short{257}, short{32767}}) {
    EXPECT_EQ(Looked(number), std::pair(false, false)) << number;
  }
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_Port, kMissingPort), S_OK);
  ComPtr<IDispatch> dispatch;
  ASSERT_EQ(port_.As(&dispatch), S_OK);
  const Outcome outcome = LateObject(dispatch).Call(L"OpenPort");
  EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.scode, ControlError(8002));
  EXPECT_EQ(outcome.source, L"CKespCOMPort3 - OpenPort() [commCOMControl]");
  EXPECT_EQ(outcome.description, L"Invalid port number");
}

TEST_F(SerialPortTest, ClosedPort_OperationsAreRefused) {
  EXPECT_EQ(RefusalOf(WriteLine(L"t")), NotOpen(L"CKespCOMPort3 - WriteLine() [commCOMControl]"));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(RefusalOf(port_->ClearBuffers()), NotOpen(L"commCOMControl"));
  EXPECT_EQ(port_->ClosePort(), S_OK);
}

// The tick counter of the library and of the test is the same one, so that this holds on a slow machine.
TEST_F(SerialPortTest, WriteLine_EveryArgumentReachesTheLine) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  MustOpen();
  const DWORD start = GetTickCount();
  EXPECT_EQ(WriteLine(L"SL", L"01", L"100", VARIANT_TRUE), S_OK);
  EXPECT_TRUE(Answer());
  EXPECT_EQ(wire_.Receive(1), "\r");
  EXPECT_EQ(wire_.Receive(14),
            "\x04"
            "0011\x02SL100\x03-\r");
  EXPECT_GE(GetTickCount() - start, 50U);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "");
}

// The text takes the place of what the argument held, also when the read fails.
TEST_F(SerialPortTest, ReadLine_ReplyInPiecesAndSilence) {
  MustOpen();
  SetTimeOut(kEndlessTimeOut);
  *reply_.in_out() = SysAllocString(L"something longer than the reply, left from an earlier read");
  wire_.OnBytes("?\r")
      .Reply("12")
      .Reply(".34")
      .After(Milliseconds(40))
      .Reply("5\r\n")
      .After(Milliseconds(40));
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  EXPECT_EQ(RefusalOf(ReadLine()), Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_EQ(reply_.str(), L"12.345");
  SetTimeOut(kSerialTimeOut);
  const DWORD start = GetTickCount();
  EXPECT_EQ(RefusalOf(ReadLine()), TimedOut(L"ReadLine()"));
  EXPECT_GE(GetTickCount() - start, static_cast<DWORD>(kSerialTimeOut));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(reply_.str(), L"");
}

TEST_F(SerialPortTest, ReadLineBinary_BytesTextAndSilence) {
  MustOpen();
  EXPECT_EQ(port_->SetInputMode(imBinary), S_OK);
  const std::string bytes("\0\xFF\r\n\x80", 5);
  wire_.OnBytes("?\r").Reply(bytes.substr(0, 2)).Reply(bytes.substr(2)).After(Milliseconds(150));
  EXPECT_EQ(WriteLine(L"?"), S_OK);
  const DWORD start = GetTickCount();
  EXPECT_EQ(RefusalOf(ReadLineBinary(500)), Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_GE(GetTickCount() - start, 500U) << "the silence is the argument's";
  EXPECT_EQ(BytesOf(*bytes_.get()), bytes);
  EXPECT_EQ(port_->SetInputMode(imText), S_OK);
  bytes_ = Value(L"earlier ");
  wire_.Send("later");
  EXPECT_EQ(ReadLineBinary(), S_OK);
  EXPECT_EQ(bytes_.text(), L"earlier later");
  EXPECT_EQ(RefusalOf(ReadLineBinary()), TimedOut(L"ReadLineBinary()"));
  EXPECT_FALSE(Answer());
  EXPECT_EQ(bytes_.text(), L"earlier later");
}

TEST_F(SerialPortTest, ReadLineBinary_TypedVariableOfTheOtherKind_IsATypeMismatch) {
  MustOpen();
  BSTR text = nullptr;
  SAFEARRAY* bytes = NewByteArray("before");
  for (auto [mode, variable] :
       {std::pair{imBinary, Reference(&text)}, std::pair{imText, Reference(&bytes)}}) {
    EXPECT_EQ(port_->SetInputMode(mode), S_OK);
    EXPECT_EQ(RefusalOf(port_->ReadLineBinary(&variable, 100, &answer_)).result, ControlError(13));
  }
  SafeArrayDestroy(bytes);
}

// Ten times what the line's own buffer holds; a download looks at it twice a second.
TEST_F(SerialPortTest, Download_MuchDataAndSilence) {
  MustOpen();
  std::string data;
  for (int line = 0; data.size() < 40000; ++line) data += std::to_string(line) + ",12.345\r\n";
  std::thread instrument([&] { wire_.Send(data); });
  SetTimeOut(800);
  EXPECT_EQ(RefusalOf(Download()), Refusal{});
  instrument.join();
  EXPECT_TRUE(Answer());
  EXPECT_TRUE(reply_.str() == std::wstring(data.begin(), data.end())) << reply_.str().size();
  EXPECT_EQ(RefusalOf(Download()),
            (Refusal{ERR_DOWNLOAD_TIMEOUT, L"CKespCOMPort3 - Download()",
                     L"Timeout while downloading from COM" + SerialPortText() + L"."}));
}

// The first command stays without an answer, which takes two seconds.
TEST_F(SerialPortTest, AutoDetect_EveryArgumentIsUsed) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  wire_
      .OnBytes(
          "\x04"
          "0011*VER\x05\r")
      .Reply("1.4\r\n");
  EXPECT_EQ(RefusalOf(port_->AutoDetect(reply_.in_out(), dlCommonCommands, Text(L"01").get(), &answer_)),
            Refusal{});
  EXPECT_TRUE(Answer());
  EXPECT_EQ(reply_.str(), L"1.4");
}

TEST_F(SerialPortTest, Log_HoldsWhatTheTransportDoes) {
  const TemporaryFile log;
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_LogFilename, log.path()), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_CreateLogFile, VARIANT_TRUE), S_OK);
  MustOpen();
  EXPECT_EQ(port_->ClearBuffers(), S_OK);
  EXPECT_EQ(port_->ClosePort(), S_OK);
  const std::wstring number = SerialPortText();
  EXPECT_EQ(log.Messages(),
            (Lines{L"Opening COM port " + number + L" with settings 9600,N,8,1", L"Clearing buffers...",
                   L"Closing COM port " + number, L"Closed COM port " + number}));
}

// A pulse lasts 10 ms, and so does the pause behind it.
TEST_F(SerialPortTest, InfraredAdapter_LinesArePulsedByTheRate) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br38400), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseIRDongle, VARIANT_TRUE), S_OK);
  MustOpen();
  EXPECT_TRUE(LineHistory().ends_with("DR R DR D DR D DR D DR D DR")) << LineHistory();
  const std::vector<LineChange> changes = LineChanges();
  for (std::size_t i = changes.size() - 9; i < changes.size(); ++i) {
    EXPECT_GE(changes[i].time - changes[i - 1].time, Milliseconds(10)) << i;
  }
}

TEST_F(SerialPortTest, Switch_IsSelectedAndReleasedAndOutlivesItsLine) {
  UseSwitch();
  EXPECT_EQ(Write(box_, &_CKespSmartSwitch3::put_SSPort, L"3"), S_OK);
  MustOpen();
  EXPECT_EQ(wire_.ReceiveUntilQuiet(),
            "\x1B\x02\x04\x1B\x02"
            "3\r");
  EXPECT_EQ(Read(box_, &_CKespSmartSwitch3::get_CurrentPort), L"3");
  port_.Reset();
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), "\x1B\x02\x04");
  EXPECT_EQ(Read(box_, &_CKespSmartSwitch3::get_CurrentPort), L"");
}

TEST_F(SerialPortTest, TestSmartSwitch_StepsThroughThePorts) {
  UseSwitch();
  const std::string release = "\x1B\x02\x04";
  std::string expected = release;
  for (const std::string port : {"A", "B", "C", "D"}) expected += release + "\x1B\x02" + port + "\r";
  const DWORD start = GetTickCount();
  EXPECT_EQ(port_->TestSmartSwitch(), S_OK);
  EXPECT_GE(GetTickCount() - start, 4U * 200U);
  EXPECT_EQ(wire_.ReceiveUntilQuiet(), expected + release);
  EXPECT_EQ(Read(box_, &_CKespSmartSwitch3::get_SSPort), L"D");
  EXPECT_TRUE(IsAvailable());
}

}  // namespace
}  // namespace kesp::clients
