// Unit tests of the serial transport's object: defaults, key, port, time-out and plain settings.
#include <cstdint>
#include <memory>
#include <string>

#include "serial/kesp_com_port_fixture.h"
#include "support/error_numbers.h"

namespace kesp {
namespace {

TEST_F(CKespCOMPort3Test, Created_LineSettingsHaveTheirDefaults) {
  EXPECT_EQ(port_.Port(), 1);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
  EXPECT_EQ(port_.StopBits(), EKespStopBits3::STOP_1BIT);
  EXPECT_EQ(port_.Parity(), EKespParity3::PARITY_NONE);
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_KESP);
  EXPECT_EQ(port_.GetSettings(), L"<unknown>,N,8,1");
}

TEST_F(CKespCOMPort3Test, Created_ReadSettingsHaveTheirDefaults) {
  EXPECT_EQ(port_.TimeOut(), 3000);
  EXPECT_TRUE(port_.StripCRLF());
  EXPECT_TRUE(port_.TerminateOnLF());
  EXPECT_TRUE(port_.CheckNonAscii());
}

TEST_F(CKespCOMPort3Test, Created_DevicesOnTheLineHaveTheirDefaults) {
  EXPECT_FALSE(port_.UseSmartSwitch());
  EXPECT_FALSE(port_.UseIRDongle());
  EXPECT_FALSE(port_.UseRFModem());
  EXPECT_EQ(port_.InstrAddr(), 0);
  EXPECT_EQ(port_.RFModemPropHCID(), 0);
  EXPECT_FALSE(port_.UseRedirector());
}

TEST_F(CKespCOMPort3Test, Created_LogIsOff) {
  EXPECT_FALSE(port_.CreateLogFile());
  EXPECT_EQ(port_.LogFilename(), L"CKespCOMPort3.log");
}

TEST_F(CKespCOMPort3Test, Created_OwnsSixPortSwitch) {
  ASSERT_NE(port_.SmartSwitch(), nullptr);
  EXPECT_EQ(port_.SmartSwitch()->NumPorts(), 6);
}

TEST_F(CKespCOMPort3Test, TwoObjects_HaveSwitchesOfTheirOwn) {
  const CKespCOMPort3 other(environment_.environment, ports_);
  EXPECT_NE(port_.SmartSwitch(), other.SmartSwitch());
}

TEST_F(CKespCOMPort3Test, SmartSwitchHeld_OutlivesTheObject) {
  auto port = std::make_unique<CKespCOMPort3>(environment_.environment, ports_);
  const std::shared_ptr<CKespSmartSwitch3> held = port->SmartSwitch();
  held->SetSSPort(L"B");
  EXPECT_EQ(port->SmartSwitch()->SSPort(), L"B");
  port.reset();
  EXPECT_EQ(held->SSPort(), L"B");
}

TEST_F(CKespCOMPort3Test, Created_KeyIsTenDigitsOfNewGuidAndK) {
  environment_.guids.Push({0x3F2A9C01, 0xD4E5, 0x1234, {}});
  const CKespCOMPort3 created(environment_.environment, ports_);
  EXPECT_EQ(created.GetKey(), L"3F2A9C01D4K");
}

TEST_F(CKespCOMPort3Test, CreatedWithoutGuid_KeyIsK) {
  environment_.guids.Fail();
  const CKespCOMPort3 created(environment_.environment, ports_);
  EXPECT_EQ(created.GetKey(), L"K");
}

TEST_F(CKespCOMPort3Test, TwoObjects_HaveDifferentKeys) {
  const CKespCOMPort3 other(environment_.environment, ports_);
  EXPECT_NE(port_.GetKey(), other.GetKey());
}

TEST_F(CKespCOMPort3Test, SettingsChanged_KeyStays) {
  const std::wstring key = port_.GetKey();
  port_.SetPort(7);
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  EXPECT_EQ(port_.GetKey(), key);
}

TEST_F(CKespCOMPort3Test, PortInRange_IsStored) {
  for (const std::int16_t value : {std::int16_t{1}, std::int16_t{2}, std::int16_t{255}, std::int16_t{256}}) {
    port_.SetPort(value);
    EXPECT_EQ(port_.Port(), value);
  }
}

TEST_F(CKespCOMPort3Test, PortOutOfRange_IsRefused) {
  port_.SetPort(9);
  for (const std::int16_t value :
       {std::int16_t{0}, std::int16_t{-1}, std::int16_t{257}, kLowest16, kHighest16}) {
    ExpectRefused(&CKespCOMPort3::SetPort, value, com_port_error::ERR_INVALID_COM_PORT,
                  L"CKespCOMPort3 - Port", L"Invalid COM port.");
  }
}

TEST_F(CKespCOMPort3Test, TimeOutNotNegative_IsStored) {
  for (const std::int32_t value : {0, 1, 250, 40000, kHighest32}) {
    port_.SetTimeOut(value);
    EXPECT_EQ(port_.TimeOut(), value);
  }
}

TEST_F(CKespCOMPort3Test, TimeOutNegative_IsRefused) {
  for (const std::int32_t value : {-1, -3000, kLowest32}) {
    ExpectRefused(&CKespCOMPort3::SetTimeOut, value, com_port_error::ERR_INVALID_TIMEOUT,
                  L"[CKespCOMPort3 - TimeOut]", L"Invalid timeout setting.");
  }
}

TEST_F(CKespCOMPort3Test, PlainSwitches_AreStored) {
  struct Case {
    const char* name;
    bool (CKespCOMPort3::*get)() const;
    void (CKespCOMPort3::*set)(bool);
  };
  constexpr Case kCases[] = {
      {"StripCRLF", &CKespCOMPort3::StripCRLF, &CKespCOMPort3::SetStripCRLF},
      {"TerminateOnLF", &CKespCOMPort3::TerminateOnLF, &CKespCOMPort3::SetTerminateOnLF},
      {"CheckNonAscii", &CKespCOMPort3::CheckNonAscii, &CKespCOMPort3::SetCheckNonAscii},
      {"UseSmartSwitch", &CKespCOMPort3::UseSmartSwitch, &CKespCOMPort3::SetUseSmartSwitch},
      {"UseIRDongle", &CKespCOMPort3::UseIRDongle, &CKespCOMPort3::SetUseIRDongle},
      {"UseRFModem", &CKespCOMPort3::UseRFModem, &CKespCOMPort3::SetUseRFModem},
      {"UseRedirector", &CKespCOMPort3::UseRedirector, &CKespCOMPort3::SetUseRedirector},
      {"CreateLogFile", &CKespCOMPort3::CreateLogFile, &CKespCOMPort3::SetCreateLogFile},
  };
  for (const Case& c : kCases) {
    const auto before = Settings(port_);
    const bool first = (port_.*c.get)();
    (port_.*c.set)(!first);
    EXPECT_EQ((port_.*c.get)(), !first) << c.name;
    (port_.*c.set)(first);
    EXPECT_TRUE(Settings(port_) == before) << c.name;
  }
}

TEST_F(CKespCOMPort3Test, PlainNumbersAtTheirLimits_AreStored) {
  for (const std::int16_t value : {kLowest16, std::int16_t{-1}, std::int16_t{0}, kHighest16}) {
    port_.SetInstrAddr(value);
    EXPECT_EQ(port_.InstrAddr(), value);
  }
  for (const std::int32_t value : {kLowest32, -1, 0, kHighest32}) {
    port_.SetRFModemPropHCID(value);
    EXPECT_EQ(port_.RFModemPropHCID(), value);
  }
}

TEST_F(CKespCOMPort3Test, FramingWithoutName_IsStored) {
  for (const std::int32_t value : {kLowest32, -1, 0, 1, 2, 3, 4, 5, kHighest32}) {
    port_.SetDataBits(As<EKespDataBits3>(value));
    port_.SetStopBits(As<EKespStopBits3>(value));
    port_.SetParity(As<EKespParity3>(value));
    EXPECT_EQ(static_cast<std::int32_t>(port_.DataBits()), value);
    EXPECT_EQ(static_cast<std::int32_t>(port_.StopBits()), value);
    EXPECT_EQ(static_cast<std::int32_t>(port_.Parity()), value);
  }
}

TEST_F(CKespCOMPort3Test, AnyLogFilename_IsStored) {
  for (const std::wstring& name : {std::wstring(LR"(C:\logs\serial.log)"), std::wstring(L"a?*.log"),
                                   std::wstring(L"\x0416.log"), std::wstring()}) {
    port_.SetLogFilename(name);
    EXPECT_EQ(port_.LogFilename(), name);
  }
}

TEST_F(CKespCOMPort3Test, LogSwitchedOn_SettingsWriteNoLine) {
  port_.SetCreateLogFile(true);
  port_.SetLogFilename(L"serial.log");
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  EXPECT_TRUE(environment_.files.files().empty());
}

}  // namespace
}  // namespace kesp
