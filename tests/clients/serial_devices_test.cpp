// Conversations with simulated devices at a COM port: controllers, a radio modem, a redirector, a port
// switch.
#include <gtest/gtest.h>

#include <string>

#include "tests/clients/comm_obj_client.h"
#include "tests/clients/serial_fixture.h"

namespace kesp::clients {
namespace {

constexpr wchar_t kController[] = L"KESP,SC300,SIM30118,1.4";

// A communication object on the port of this test, where the devices of serial_devices.json stand.
class SerialDevicesTest : public testing::Test, protected CommObjClient {
 protected:
  SerialDevicesTest() {
    UseSerialLine(port_);
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_TRUE), S_OK);
    EXPECT_EQ(Write(switch_, &_CKespSmartSwitch3::put_Style, ssBB8port), S_OK);
  }

  void Select(const std::wstring& name) {
    EXPECT_EQ(Write(switch_, &_CKespSmartSwitch3::put_SSPort, name), S_OK);
  }
  // Leaves the switch at that port and uses it no more, as it has an answer to a wrong rate, too.
  void StayAt(const std::wstring& name) {
    Select(name);
    EXPECT_TRUE(CallsTrue(port_, &_CKespCOMPort3::OpenPort));
    EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseSmartSwitch, VARIANT_FALSE), S_OK);
    EXPECT_EQ(port_->ClosePort(), S_OK);
  }
  // The reply to a query; the status in angle brackets when there is none.
  std::wstring ReplyTo(const std::wstring& cmd, const std::wstring& address = {},
                       const std::wstring& value = {}) {
    if (Query(cmd, address, value)) return reply_.str();
    return L"<" + std::to_wstring(Read(comm_, &_CKespCommObj::get_CommError)) + L">";
  }

  ComPtr<_CKespCOMPort3> port_ = Use<_CKespCOMPort3>(csRS232);
  ComPtr<_CKespSmartSwitch3> switch_ = ReadObject(port_, &_CKespCOMPort3::get_SmartSwitch);
};

TEST_F(SerialDevicesTest, WrongRate_DetectInstrumentFindsTheRightOneAndTheNextQueryUsesIt) {
  StayAt(L"A");
  // By then the switch has heard its selection, at the rate at which it was sent.
  EXPECT_EQ(ReplyTo(L"*IDN?"), kController);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MinBaudRate, br4800), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_BaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_MaxBaudRate, br19200), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  EXPECT_EQ(ReplyTo(L"*IDN?"), L"<5>") << "garbage";
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(comm_->DetectInstrument(reply_.in_out(), dlSCPIOnly, &found), S_OK);
  EXPECT_EQ(found, VARIANT_TRUE);
  EXPECT_EQ(reply_.str(), kController);
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_BaudRate), br9600);
  EXPECT_EQ(Read(port_, &_CKespCOMPort3::get_TimeOut), kSerialTimeOut);
  EXPECT_EQ(ReplyTo(L"*VER"), L"1.4");
}

TEST_F(SerialDevicesTest, ProcessController_AnswersAtItsAddressInTheRightFrameAndPassesBlockChecks) {
  StayAt(L"B");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_ControllerStyle, CS_OMEGA), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_FALSE), S_OK);
  EXPECT_EQ(ReplyTo(L"PV", L"01"), L"<5>") << "the line has eight bits and no parity";
  EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_DataBits, DATA_8BITS), S_OK);
  EXPECT_EQ(WriteByReference(port_, &_CKespCOMPort3::put_Parity, PARITY_NONE), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_TerminateOnLF, VARIANT_TRUE), S_OK);
  EXPECT_EQ(ReplyTo(L"PV", L"01"), L"\x02PV0021.5\x03\x1D");
  EXPECT_EQ(ReplyTo(L"PV", L"02"), L"<4>");
  EXPECT_EQ(ReplyTo(L"SL", L"01", L"250"), L"\x06");
  EXPECT_EQ(ReplyTo(L"SL", L"01"), L"\x02SL250\x03+");
}

TEST_F(SerialDevicesTest, RadioModem_EachAddressIsItsOwnInstrumentAndSettingsAreReadBack) {
  StayAt(L"C");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRFModem, VARIANT_TRUE), S_OK);
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, short{26}), S_OK);
  EXPECT_EQ(ReplyTo(L"*IDN?"), L"KESP,RB20,SIM50026,1.0");
  EXPECT_EQ(ReplyTo(L"MEAS?"), L"12.003");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_InstrAddr, short{1}), S_OK);
  EXPECT_EQ(ReplyTo(L"*IDN?"), L"KESP,RT10,SIM50001,1.0");
  VARIANT_BOOL answer = VARIANT_FALSE;
  EXPECT_TRUE(CallsTrue(port_, &_CKespCOMPort3::OpenPort));
  EXPECT_EQ(port_->RFWriteModemSettings(4660, 13, 255, 1500, VARIANT_TRUE, &answer), S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  Text serial, power_level, pan_id, channel, address, time_out;
  EXPECT_EQ(port_->RFReadModemSettings(serial.in_out(), power_level.in_out(), pan_id.in_out(),
                                       channel.in_out(), address.in_out(), time_out.in_out(), &answer),
            S_OK);
  EXPECT_EQ(answer, VARIANT_TRUE);
  EXPECT_EQ(pan_id.str() + L"," + channel.str() + L"," + address.str() + L"," + time_out.str(),
            L"4660,13,255,1500");
}

TEST_F(SerialDevicesTest, Redirector_ReplyInPiecesEndsWithItsCarriageReturn) {
  StayAt(L"D");
  EXPECT_EQ(Write(port_, &_CKespCOMPort3::put_UseRedirector, VARIANT_TRUE), S_OK);
  EXPECT_EQ(ReplyTo(L"*IDN?"), L"KESP,RD100,SIM40220,1.1");
  EXPECT_EQ(ReplyTo(L"MEAS?"), L"+021.50");
}

TEST_F(SerialDevicesTest, PortSwitch_LeadsToEachInstrumentAndStaysWhileThePortIsKept) {
  Select(L"E");
  EXPECT_EQ(ReplyTo(L"*IDN?"), L"<4>");
  EXPECT_EQ(Read(switch_, &_CKespSmartSwitch3::get_CurrentPort), L"") << "released by the closing";
  EXPECT_EQ(Write(comm_, &_CKespCommObj::put_AutoClose, VARIANT_FALSE), S_OK);
  Select(L"A");
  EXPECT_EQ(ReplyTo(L"*IDN?"), kController);
  EXPECT_EQ(ReplyTo(L"*VER"), L"1.4");
  EXPECT_EQ(Read(switch_, &_CKespSmartSwitch3::get_CurrentPort), L"A");
}

}  // namespace
}  // namespace kesp::clients
