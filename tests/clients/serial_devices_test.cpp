// Queries of simulated devices at a COM port: controllers, a radio modem, a port switch, a redirector.
#include <gtest/gtest.h>

#include <string>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

// A communication object on the port of this test, at the other end of which stands what the test's
// registration names (CMakeLists.txt).
class SerialDeviceFixture : public testing::Test {
 protected:
  SerialDeviceFixture() {
    UseSerialLine(port_);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TimeOut, 3000L), S_OK);
  }

  // The reply to a query; the status in angle brackets when there is none.
  std::wstring Query(const std::wstring& cmd, const std::wstring& address = {},
                     const std::wstring& value = {}) {
    Text reply;
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(comm_->Query(reply.in_out(), Text(cmd).get(), Text(address).get(), Text(value).get(), &answer),
              S_OK);
    if (answer == VARIANT_TRUE) return reply.str();
    return L"<" + std::to_wstring(Read(comm_, &_CKespCommObj::get_CommError)) + L">";
  }

  Apartment apartment_;
  ComPtr<_CKespCommObj> comm_ = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  ComPtr<_CKespCOMPort3> port_ = SerialTransport(comm_);
};

class SerialControllerTest : public SerialDeviceFixture {};

TEST_F(SerialControllerTest, RightRate_Answers) {
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,SC300,SIM30118,1.4");
  EXPECT_EQ(Query(L"*VER"), L"1.4");
}

TEST_F(SerialControllerTest, WrongRate_RepliesAreRefusedAsInvalid) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TimeOut, 300L), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  EXPECT_EQ(Query(L"*IDN?"), L"<5>");
}

TEST_F(SerialControllerTest, WrongRate_DetectionFindsTheRightOne) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MinBaudRate, br4800), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MaxBaudRate, br38400), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  Text answer;
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(port_->AutoDetect(answer.in_out(), dlSCPIOnly, nullptr, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(answer.str(), L"KESP,SC300,SIM30118,1.4");
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_BaudRate), br9600);
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_TimeOut), 3000);
}

TEST_F(SerialControllerTest, DetectInstrument_FindsTheRateAndTheNextQueryUsesIt) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MinBaudRate, br4800), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MaxBaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  Text answer(L"before");
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(comm_->DetectInstrument(answer.in_out(), dlSCPIOnly, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(answer.str(), L"KESP,SC300,SIM30118,1.4");
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_BaudRate), br9600);
  EXPECT_EQ(Query(L"*VER"), L"1.4");
}

TEST_F(SerialControllerTest, DetectInstrument_PortThatAQueryLeftOpen_IsClosedAndOpenedAgain) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  EXPECT_EQ(Query(L"*VER"), L"1.4");
  Text answer;
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(comm_->DetectInstrument(answer.in_out(), dlSCPIOnly, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(Query(L"*VER"), L"1.4");
}

TEST_F(SerialControllerTest, SetInputMode_DecidesWhatABinaryQueryGives) {
  for (const auto& [mode, type] : {std::pair{imBinary, VT_ARRAY | VT_UI1}, std::pair{imText, int{VT_BSTR}}}) {
    EXPECT_EQ(comm_->SetInputMode(mode), S_OK);
    EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommError), cfrOtherError);
    Value reply;
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(comm_->QueryBinary(reply.get(), Text(L"*VER").get(), nullptr, nullptr, &answer), S_OK);
    EXPECT_EQ(answer, VARIANT_TRUE);
    EXPECT_EQ(reply.type(), type);
    EXPECT_EQ(Read(comm_, &_CKespCommObj::get_CommError), cfrSuccess);
  }
}

class SerialOmegaTest : public SerialDeviceFixture {
 protected:
  SerialOmegaTest() {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TimeOut, 1000L), S_OK);
  }

  // The frame that the controller answers a read request with.
  static std::wstring Frame(const std::wstring& body) {
    wchar_t check = 3;
    for (const wchar_t c : body) check = static_cast<wchar_t>(check ^ c);
    return L"\x02" + body + L"\x03" + check;
  }
};

TEST_F(SerialOmegaTest, ReadRequest_IsAnsweredAtItsAddressAlone) {
  EXPECT_EQ(Query(L"PV", L"01"), Frame(L"PV0021.5"));
  EXPECT_EQ(Query(L"PV", L"02"), L"<4>");
  EXPECT_EQ(Query(L"PV"), L"<2>");
}

TEST_F(SerialOmegaTest, WriteRequest_PassesTheBlockCheckAndIsKept) {
  EXPECT_EQ(Query(L"SL", L"01", L"250"), L"\x06");
  EXPECT_EQ(Query(L"SL", L"01"), Frame(L"SL250"));
}

TEST_F(SerialOmegaTest, OtherCharacterFrame_IsNotUnderstood) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_DataBits, DATA_8BITS), S_OK);
  EXPECT_EQ(Query(L"PV", L"01"), L"<5>");
}

class SerialRadioModemTest : public SerialDeviceFixture {
 protected:
  SerialRadioModemTest() { EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRFModem, VARIANT_TRUE), S_OK); }

  // The modem's six settings, joined by commas; "-" when they cannot be read.
  std::wstring Settings() {
    Text serial, power_level, pan_id, channel, address, time_out;
    VARIANT_BOOL answer = VARIANT_FALSE;
    EXPECT_EQ(port_->RFReadModemSettings(serial.in_out(), power_level.in_out(), pan_id.in_out(),
                                         channel.in_out(), address.in_out(), time_out.in_out(), &answer),
              S_OK);
    if (answer != VARIANT_TRUE) return L"-";
    return serial.str() + L"," + power_level.str() + L"," + pan_id.str() + L"," + channel.str() + L"," +
           address.str() + L"," + time_out.str();
  }
};

TEST_F(SerialRadioModemTest, EachAddress_IsItsOwnInstrument) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, short{26}), S_OK);
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,RB20,SIM50026,1.0");
  EXPECT_EQ(Query(L"MEAS?"), L"12.003");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, short{1}), S_OK);
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,RT10,SIM50001,1.0");
}

TEST_F(SerialRadioModemTest, SettingsWritten_AreReadBack) {
  const std::wstring before = Settings();
  EXPECT_NE(before, L"-");
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_EQ(port_->RFWriteModemSettings(4660, 13, 255, 1500, VARIANT_TRUE, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  const std::wstring after = Settings();
  EXPECT_TRUE(after.ends_with(L",4660,13,255,1500"))
      << std::string(before.begin(), before.end()) << " then " << std::string(after.begin(), after.end());
}

class SerialPortSwitchTest : public SerialDeviceFixture {
 protected:
  SerialPortSwitchTest() {
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(switch_, &_CKespSmartSwitch3::put_Style, ssBB4port), S_OK);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRedirector, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TimeOut, 1000L), S_OK);
  }

  void Select(const std::wstring& name) {
    EXPECT_EQ(Write(switch_, &_CKespSmartSwitch3::put_SSPort, name), S_OK);
  }

  ComPtr<_CKespSmartSwitch3> switch_ = ReadObject(port_, &_CKespCOMPort3::get_SmartSwitch);
};

TEST_F(SerialPortSwitchTest, EachPort_LeadsToItsOwnInstrument) {
  Select(L"A");
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,SC300,SIM30118,1.4");
  Select(L"B");
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,PB50,SIM60002,1.0");
  Select(L"C");
  EXPECT_EQ(Query(L"*IDN?"), L"<4>");
  EXPECT_EQ(Read(switch_, &_CKespSmartSwitch3::get_CurrentPort), L"") << "released by the closing";
}

TEST_F(SerialPortSwitchTest, PortKeptOpen_StaysSelected) {
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  Select(L"B");
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,PB50,SIM60002,1.0");
  EXPECT_EQ(Query(L"MEAS?"), L"12.003");
  EXPECT_EQ(Read(switch_, &_CKespSmartSwitch3::get_CurrentPort), L"B");
}

class SerialRedirectorTest : public SerialDeviceFixture {};

TEST_F(SerialRedirectorTest, ReplyInPieces_EndsWithItsCarriageReturn) {
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRedirector, VARIANT_TRUE), S_OK);
  EXPECT_EQ(Query(L"*IDN?"), L"KESP,RD100,SIM40220,1.1");
  EXPECT_EQ(Query(L"MEAS?"), L"+021.50");
}

}  // namespace
}  // namespace kesp::clients
