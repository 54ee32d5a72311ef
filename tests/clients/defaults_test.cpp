// The settings of new objects, through the dual interfaces.
#include <gtest/gtest.h>

#include <algorithm>

#include "KespCommObj.h"
#include "tests/clients/early_bound.h"
#include "tests/clients/library_module.h"

namespace kesp::clients {
namespace {

class DefaultsTest : public testing::Test {
 protected:
  Apartment apartment_;
};

void ExpectKey(const std::wstring& key) {
  ASSERT_EQ(key.size(), 11u);
  EXPECT_EQ(key.back(), L'K');
  EXPECT_TRUE(std::all_of(key.begin(), key.end() - 1, [](wchar_t digit) {
    return (digit >= L'0' && digit <= L'9') || (digit >= L'A' && digit <= L'F');
  })) << testing::PrintToString(key);
}

TEST_F(DefaultsTest, CommObj) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommStyle), csRS232);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommError), cfrSuccess);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorSource), L"");
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CommErrorDescr), L"");
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_AutoClose), VARIANT_TRUE);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_Debugging), VARIANT_FALSE);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_CRBeforeCommand), VARIANT_FALSE);
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_BinaryTimeoutms), 100);
  ExpectKey(Read(comm, &_CKespCommObj::GetKey));
}

TEST_F(DefaultsTest, CommObj_TraceFileLiesBesideTheLibrary) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  const std::wstring dll = RegisteredPath();
  EXPECT_EQ(Read(comm, &_CKespCommObj::get_DebugFilename),
            dll.substr(0, dll.find_last_of(L'\\')) + L"\\commobjout.log");
}

TEST_F(DefaultsTest, COMPort3) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_BaudRate), brNone);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MinBaudRate), brNone);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_MaxBaudRate), brNone);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_DataBits), DATA_8BITS);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_StopBits), STOP_1BIT);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_Parity), PARITY_NONE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_ControllerStyle), CS_KESP);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_Port), 1);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TimeOut), 3000);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_InstrAddr), 0);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_RFModemPropHCID), 0);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_LogFilename), L"CKespCOMPort3.log");
  EXPECT_EQ(Read(port, &_CKespCOMPort3::GetSettings), L"<unknown>,N,8,1");
  ExpectKey(Read(port, &_CKespCOMPort3::GetKey));
}

TEST_F(DefaultsTest, COMPort3_Switches) {
  const auto port = Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3));
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_StripCRLF), VARIANT_TRUE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_CheckNonAscii), VARIANT_TRUE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_TerminateOnLF), VARIANT_TRUE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_UseSmartSwitch), VARIANT_FALSE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_UseIRDongle), VARIANT_FALSE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_UseRFModem), VARIANT_FALSE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_UseRedirector), VARIANT_FALSE);
  EXPECT_EQ(Read(port, &_CKespCOMPort3::get_CreateLogFile), VARIANT_FALSE);
}

TEST_F(DefaultsTest, SmartSwitch3) {
  const auto smart_switch =
      ReadObject(Create<_CKespCOMPort3>(__uuidof(CKespCOMPort3)), &_CKespCOMPort3::get_SmartSwitch);
  EXPECT_EQ(Read(smart_switch, &_CKespSmartSwitch3::get_Style), ssBB6port);
  EXPECT_EQ(Read(smart_switch, &_CKespSmartSwitch3::get_NumPorts), 6);
  EXPECT_EQ(Read(smart_switch, &_CKespSmartSwitch3::get_SSPort), L"");
  EXPECT_EQ(Read(smart_switch, &_CKespSmartSwitch3::get_CurrentPort), L"");
}

TEST_F(DefaultsTest, TCP) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_CheckNonAscii), VARIANT_TRUE);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_TerminateOnEOS), VARIANT_TRUE);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_StripCRLF), VARIANT_TRUE);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_TimeOutmSecs), 3000);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_EOSChar), L"\r");
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_State), sckClosed);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_Port), 0);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_IPAddress), L"0.0.0.0");
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_CreateLogFile), VARIANT_FALSE);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_LogFilename), L"CKespTCP.log");
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_Protocol), sckTCPProtocol);
  EXPECT_EQ(Read(tcp, &_CKespTCP::get_IPType), ipStatic);
  ExpectKey(Read(tcp, &_CKespTCP::GetKey));
}

TEST_F(DefaultsTest, TCP_DevicesAreItsOwnEmptyCollection) {
  const auto tcp = Create<_CKespTCP>(__uuidof(CKespTCP));
  const auto devices = ReadObject(tcp, &_CKespTCP::get_Devices);
  EXPECT_EQ(Read(devices, &_CInstruments::get_Count), 0);
  EXPECT_TRUE(IsSameObject(devices.Get(), ReadObject(tcp, &_CKespTCP::get_Devices).Get()));
  const auto other = ReadObject(Create<_CKespTCP>(__uuidof(CKespTCP)), &_CKespTCP::get_Devices);
  EXPECT_FALSE(IsSameObject(devices.Get(), other.Get()));
}

TEST_F(DefaultsTest, IEEE) {
  const auto ieee = Create<_CKespIEEE>(__uuidof(CKespIEEE));
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_ClearDevice), VARIANT_TRUE);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_SetEOS), VARIANT_TRUE);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_TimeOutSecs), to3s);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_PrimaryAddress), 1);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_SecondaryAddress), 0);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_BoardIndex), 0);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_EOSChar), L"");
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_CreateLogFile), VARIANT_FALSE);
  EXPECT_EQ(Read(ieee, &_CKespIEEE::get_LogFilename), L"CKespIEEE.log");
  ExpectKey(Read(ieee, &_CKespIEEE::GetKey));
}

TEST_F(DefaultsTest, Instrument) {
  const auto instrument = Create<_CInstrument>(__uuidof(CInstrument));
  EXPECT_EQ(Read(instrument, &_CInstrument::get_Model), L"");
  EXPECT_EQ(Read(instrument, &_CInstrument::get_Serial), L"");
  EXPECT_EQ(Read(instrument, &_CInstrument::get_IPAddress), L"");
  EXPECT_EQ(Read(instrument, &_CInstrument::get_MACAddress), L"");
  EXPECT_EQ(Read(instrument, &_CInstrument::get_IPType), ipStatic);
}

TEST_F(DefaultsTest, Instruments) {
  EXPECT_EQ(Read(Create<_CInstruments>(__uuidof(CInstruments)), &_CInstruments::get_Count), 0);
}

TEST_F(DefaultsTest, Keys_DifferAndStay) {
  const auto comm = Create<_CKespCommObj>(__uuidof(CKespCommObj));
  std::vector<std::wstring> keys = {
      Read(comm, &_CKespCommObj::GetKey),
      Read(Create<_CKespCommObj>(__uuidof(CKespCommObj)), &_CKespCommObj::GetKey),
      Read(Create<_CKespTCP>(__uuidof(CKespTCP)), &_CKespTCP::GetKey),
      Read(Create<_CKespIEEE>(__uuidof(CKespIEEE)), &_CKespIEEE::GetKey)};
  EXPECT_EQ(Read(comm, &_CKespCommObj::GetKey), keys.front());
  std::sort(keys.begin(), keys.end());
  EXPECT_EQ(std::unique(keys.begin(), keys.end()), keys.end());
}

}  // namespace
}  // namespace kesp::clients
