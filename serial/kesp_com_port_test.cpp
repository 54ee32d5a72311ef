// Unit tests of the serial transport's object: defaults, key, and the settings that it only stores.
#include <memory>
#include <string>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3Test : public CKespCOMPort3Fixture {};

TEST_F(CKespCOMPort3Test, Created_EverySettingHasItsDefault) {
  EXPECT_EQ(port_.Port(), 1);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::brNone);
  EXPECT_EQ(port_.DataBits(), EKespDataBits3::DATA_8BITS);
  EXPECT_EQ(port_.StopBits(), EKespStopBits3::STOP_1BIT);
  EXPECT_EQ(port_.Parity(), EKespParity3::PARITY_NONE);
  EXPECT_EQ(port_.ControllerStyle(), EKespControllerStyle3::CS_KESP);
  EXPECT_EQ(port_.TimeOut(), 3000);
  EXPECT_TRUE(port_.StripCRLF());
  EXPECT_TRUE(port_.TerminateOnLF());
  EXPECT_TRUE(port_.CheckNonAscii());
  EXPECT_FALSE(port_.UseSmartSwitch());
  EXPECT_FALSE(port_.UseIRDongle());
  EXPECT_FALSE(port_.UseRFModem());
  EXPECT_EQ(port_.InstrAddr(), 0);
  EXPECT_EQ(port_.RFModemPropHCID(), 0);
  EXPECT_FALSE(port_.UseRedirector());
  EXPECT_FALSE(port_.CreateLogFile());
  EXPECT_EQ(port_.LogFilename(), L"CKespCOMPort3.log");
  EXPECT_EQ(port_.InputMode(), EInputMode::imText);
}

TEST_F(CKespCOMPort3Test, SmartSwitch_IsTheObjectsOwnAndMayOutliveIt) {
  auto other = std::make_unique<CKespCOMPort3>(environment_.environment, ports_);
  const std::shared_ptr<CKespSmartSwitch3> held = other->SmartSwitch();
  EXPECT_NE(held, port_.SmartSwitch());
  held->SetSSPort(L"B");
  EXPECT_EQ(other->SmartSwitch()->SSPort(), L"B");
  other.reset();
  EXPECT_EQ(held->SSPort(), L"B");
}

TEST_F(CKespCOMPort3Test, Key_IsKAndTenDigitsOfANewGuid) {
  environment_.guids.Push({0x3F2A9C01, 0xD4E5, 0x1234, {}});
  const CKespCOMPort3 created(environment_.environment, ports_);
  EXPECT_EQ(created.GetKey(), L"3F2A9C01D4K");
  EXPECT_NE(port_.GetKey(), created.GetKey());
}

TEST_F(CKespCOMPort3Test, Port_IsFrom1To256) {
  for (const std::int16_t value : {std::int16_t{1}, std::int16_t{255}, std::int16_t{256}}) {
    port_.SetPort(value);
    EXPECT_EQ(port_.Port(), value);
  }
  for (const std::int16_t value :
       {std::int16_t{0}, std::int16_t{-1}, std::int16_t{257}, kLowest16, kHighest16}) {
    SCOPED_TRACE(value);
    ExpectRefused([&] { port_.SetPort(value); },
                  {com_port_error::ERR_INVALID_COM_PORT, L"CKespCOMPort3 - Port", L"Invalid COM port."});
  }
}

TEST_F(CKespCOMPort3Test, TimeOut_IsNotNegative) {
  for (const std::int32_t value : {0, 1, 250, 40000, kHighest32}) {
    port_.SetTimeOut(value);
    EXPECT_EQ(port_.TimeOut(), value);
  }
  for (const std::int32_t value : {-1, -3000, kLowest32}) {
    SCOPED_TRACE(value);
    ExpectRefused(
        [&] { port_.SetTimeOut(value); },
        {com_port_error::ERR_INVALID_TIMEOUT, L"[CKespCOMPort3 - TimeOut]", L"Invalid timeout setting."});
  }
}

TEST_F(CKespCOMPort3Test, PlainSwitches_AreStored) {
  struct Case {
    bool (CKespCOMPort3::*get)() const;
    void (CKespCOMPort3::*set)(bool);
  };
  constexpr Case kCases[] = {
      {&CKespCOMPort3::StripCRLF, &CKespCOMPort3::SetStripCRLF},
      {&CKespCOMPort3::TerminateOnLF, &CKespCOMPort3::SetTerminateOnLF},
      {&CKespCOMPort3::CheckNonAscii, &CKespCOMPort3::SetCheckNonAscii},
      {&CKespCOMPort3::UseSmartSwitch, &CKespCOMPort3::SetUseSmartSwitch},
      {&CKespCOMPort3::UseIRDongle, &CKespCOMPort3::SetUseIRDongle},
      {&CKespCOMPort3::UseRFModem, &CKespCOMPort3::SetUseRFModem},
      {&CKespCOMPort3::UseRedirector, &CKespCOMPort3::SetUseRedirector},
      {&CKespCOMPort3::CreateLogFile, &CKespCOMPort3::SetCreateLogFile},
  };
  for (const Case& c : kCases) {
    const auto before = SettingsOf(port_);
    const bool first = (port_.*c.get)();
    (port_.*c.set)(!first);
    EXPECT_EQ((port_.*c.get)(), !first);
    (port_.*c.set)(first);
    EXPECT_TRUE(SettingsOf(port_) == before);
  }
}

TEST_F(CKespCOMPort3Test, NumbersAndNames_AreStoredWhateverTheyAre) {
  for (const std::int32_t value : {kLowest32, -1, 0, 1, 2, 3, 4, 5, kHighest32}) {
    port_.SetInstrAddr(static_cast<std::int16_t>(value));
    port_.SetRFModemPropHCID(value);
    port_.SetDataBits(As<EKespDataBits3>(value));
    port_.SetStopBits(As<EKespStopBits3>(value));
    port_.SetParity(As<EKespParity3>(value));
    EXPECT_EQ(port_.InstrAddr(), static_cast<std::int16_t>(value));
    EXPECT_EQ(port_.RFModemPropHCID(), value);
    EXPECT_EQ(static_cast<std::int32_t>(port_.DataBits()), value);
    EXPECT_EQ(static_cast<std::int32_t>(port_.StopBits()), value);
    EXPECT_EQ(static_cast<std::int32_t>(port_.Parity()), value);
  }
  for (const wchar_t* name : {LR"(C:\logs\serial.log)", L"a?*.log", L"\x0416.log", L""}) {
    port_.SetLogFilename(name);
    EXPECT_EQ(port_.LogFilename(), name);
  }
}

TEST_F(CKespCOMPort3Test, SetInputMode_OnlyTheTwoModesAreTaken) {
  for (const EInputMode mode : {EInputMode::imBinary, EInputMode::imText}) {
    port_.SetInputMode(mode);
    for (const std::int32_t other : {2, -1, kLowest32, kHighest32}) {
      port_.SetInputMode(As<EInputMode>(other));
      EXPECT_EQ(port_.InputMode(), mode) << other;
    }
  }
}

}  // namespace
}  // namespace kesp
