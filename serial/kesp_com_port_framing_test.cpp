// Unit tests of the serial transport's presets by controller style and of its settings text.
#include <cstdint>
#include <string>
#include <tuple>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

TEST_F(CKespCOMPort3Test, ControllerStyleSet_FramingFollows) {
  struct Case {
    std::int32_t style;
    EKespParity3 parity;
    EKespDataBits3 data_bits;
  };
  constexpr Case kCases[] = {
      {0, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
      {1, EKespParity3::PARITY_EVEN, EKespDataBits3::DATA_7BITS},
      {2, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
      {3, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
      {4, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
      {-1, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
      {kHighest32, EKespParity3::PARITY_NONE, EKespDataBits3::DATA_8BITS},
  };
  for (const Case& c : kCases) {
    port_.SetParity(EKespParity3::PARITY_SPACE);
    port_.SetDataBits(EKespDataBits3::DATA_5BITS);
    port_.SetStopBits(EKespStopBits3::STOP_2BITS);
    port_.SetControllerStyle(As<EKespControllerStyle3>(c.style));
    EXPECT_EQ(static_cast<std::int32_t>(port_.ControllerStyle()), c.style);
    EXPECT_EQ(port_.Parity(), c.parity) << c.style;
    EXPECT_EQ(port_.DataBits(), c.data_bits) << c.style;
    EXPECT_EQ(port_.StopBits(), EKespStopBits3::STOP_1BIT) << c.style;
  }
}

TEST_F(CKespCOMPort3Test, StyleWithoutFurtherPreset_KeepsRatesReadSettingsAndTimeOut) {
  for (const std::int32_t style : {0, 1, 3, 4, -1}) {
    CKespCOMPort3 port(environment_.environment, ports_);
    port.SetMaxBaudRate(EKespBaudRate3::br19200);
    port.SetMinBaudRate(EKespBaudRate3::br2400);
    port.SetBaudRate(EKespBaudRate3::br4800);
    port.SetCheckNonAscii(false);
    port.SetStripCRLF(false);
    port.SetTerminateOnLF(false);
    port.SetTimeOut(77);
    port.SetControllerStyle(As<EKespControllerStyle3>(style));
    EXPECT_EQ(port.MaxBaudRate(), EKespBaudRate3::br19200) << style;
    EXPECT_EQ(port.MinBaudRate(), EKespBaudRate3::br2400) << style;
    EXPECT_EQ(port.BaudRate(), EKespBaudRate3::br4800) << style;
    EXPECT_FALSE(port.CheckNonAscii()) << style;
    EXPECT_FALSE(port.StripCRLF()) << style;
    EXPECT_FALSE(port.TerminateOnLF()) << style;
    EXPECT_EQ(port.TimeOut(), 77) << style;
  }
}

TEST_F(CKespCOMPort3Test, PrecidiaSet_OverwritesRatesReadSettingsAndTimeOut) {
  AllowRates(10, 13, 12);
  port_.SetCheckNonAscii(false);
  port_.SetTimeOut(9000);
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br9600);
  EXPECT_TRUE(port_.CheckNonAscii());
  EXPECT_FALSE(port_.StripCRLF());
  EXPECT_FALSE(port_.TerminateOnLF());
  EXPECT_EQ(port_.TimeOut(), 250);
  EXPECT_EQ(port_.GetSettings(), L"9600,N,8,1");
}

TEST_F(CKespCOMPort3Test, PrecidiaSetOnNewObject_NeedsNoRangeBefore) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br9600);
}

TEST_F(CKespCOMPort3Test, OmegaAfterPrecidia_ChangesFramingOnly) {
  port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.GetSettings(), L"9600,E,7,1");
  EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br9600);
  EXPECT_EQ(port_.TimeOut(), 250);
  EXPECT_FALSE(port_.StripCRLF());
  EXPECT_FALSE(port_.TerminateOnLF());
}

TEST_F(CKespCOMPort3Test, PresetApplied_LeavesEverythingElse) {
  port_.SetPort(5);
  port_.SetUseSmartSwitch(true);
  port_.SetUseIRDongle(true);
  port_.SetUseRFModem(true);
  port_.SetInstrAddr(12);
  port_.SetRFModemPropHCID(34);
  port_.SetUseRedirector(true);
  port_.SetCreateLogFile(true);
  port_.SetLogFilename(L"mine.log");
  const std::wstring key = port_.GetKey();
  const auto smart_switch = port_.SmartSwitch();
  for (const std::int32_t style : {0, 1, 2, 3, 4}) {
    port_.SetControllerStyle(As<EKespControllerStyle3>(style));
    EXPECT_EQ(std::tuple(port_.Port(), port_.UseSmartSwitch(), port_.UseIRDongle(), port_.UseRFModem()),
              std::tuple(5, true, true, true));
    EXPECT_EQ(std::tuple(port_.InstrAddr(), port_.RFModemPropHCID(), port_.UseRedirector()),
              std::tuple(12, 34, true));
    EXPECT_EQ(std::tuple(port_.CreateLogFile(), port_.LogFilename()),
              std::tuple(true, std::wstring(L"mine.log")));
    EXPECT_EQ(std::tuple(port_.GetKey(), port_.SmartSwitch()), std::tuple(key, smart_switch));
  }
}

TEST_F(CKespCOMPort3Test, SettingsText_NamesEveryRate) {
  constexpr const wchar_t* kTexts[] = {L"<unknown>,N,8,1", L"150,N,8,1",    L"300,N,8,1",   L"600,N,8,1",
                                       L"1200,N,8,1",      L"2400,N,8,1",   L"4800,N,8,1",  L"9600,N,8,1",
                                       L"19200,N,8,1",     L"38400,N,8,1",  L"57600,N,8,1", L"115200,N,8,1",
                                       L"230400,N,8,1",    L"460800,N,8,1", L"921600,N,8,1"};
  port_.SetMaxBaudRate(EKespBaudRate3::br921600);
  std::int32_t value = -1;
  for (const wchar_t* text : kTexts) {
    port_.SetBaudRate(Rate(value++));
    EXPECT_EQ(port_.GetSettings(), text);
  }
}

TEST_F(CKespCOMPort3Test, SettingsText_GivesParityAsLetter) {
  struct Case {
    std::int32_t parity;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {
      {0, L"9600,N,8,1"}, {1, L"9600,E,8,1"},  {2, L"9600,O,8,1"}, {3, L"9600,M,8,1"},
      {4, L"9600,S,8,1"}, {-1, L"9600,N,8,1"}, {5, L"9600,N,8,1"}, {kHighest32, L"9600,N,8,1"},
  };
  AllowRates(6, 6, 6);
  for (const Case& c : kCases) {
    port_.SetParity(As<EKespParity3>(c.parity));
    EXPECT_EQ(port_.GetSettings(), c.text) << c.parity;
  }
}

TEST_F(CKespCOMPort3Test, SettingsText_GivesDataBitsAsDigit) {
  struct Case {
    std::int32_t data_bits;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {
      {0, L"9600,N,4,1"}, {1, L"9600,N,5,1"},  {2, L"9600,N,6,1"}, {3, L"9600,N,7,1"},
      {4, L"9600,N,8,1"}, {-1, L"9600,N,8,1"}, {5, L"9600,N,8,1"}, {kLowest32, L"9600,N,8,1"},
  };
  AllowRates(6, 6, 6);
  for (const Case& c : kCases) {
    port_.SetDataBits(As<EKespDataBits3>(c.data_bits));
    EXPECT_EQ(port_.GetSettings(), c.text) << c.data_bits;
  }
}

TEST_F(CKespCOMPort3Test, SettingsText_GivesStopBitsAsNumber) {
  struct Case {
    std::int32_t stop_bits;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {
      {0, L"9600,N,8,1"},  {1, L"9600,N,8,1.5"}, {2, L"9600,N,8,2"},
      {-1, L"9600,N,8,1"}, {3, L"9600,N,8,1"},   {kHighest32, L"9600,N,8,1"},
  };
  AllowRates(6, 6, 6);
  for (const Case& c : kCases) {
    port_.SetStopBits(As<EKespStopBits3>(c.stop_bits));
    EXPECT_EQ(port_.GetSettings(), c.text) << c.stop_bits;
  }
}

TEST_F(CKespCOMPort3Test, SettingsText_JoinsAllFour) {
  AllowRates(0, 13, 0);
  port_.SetParity(EKespParity3::PARITY_MARK);
  port_.SetDataBits(EKespDataBits3::DATA_5BITS);
  port_.SetStopBits(EKespStopBits3::STOP_1_5BITS);
  EXPECT_EQ(port_.GetSettings(), L"150,M,5,1.5");
}

TEST_F(CKespCOMPort3Test, BaudRateName_DoesNotDependOnTheSettings) {
  EXPECT_EQ(port_.BaudRateName(EKespBaudRate3::br921600), L"921600");
  EXPECT_EQ(port_.BaudRateName(EKespBaudRate3::brNone), L"<unknown>");
  EXPECT_EQ(port_.BaudRateName(Rate(14)), L"<unknown>");
}

}  // namespace
}  // namespace kesp
