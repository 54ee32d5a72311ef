// Unit tests of the serial transport's settings that depend on each other: rates, presets, and the text of
// all.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3SettingsTest : public CKespCOMPort3Fixture {
 protected:
  using Setter = void (CKespCOMPort3::*)(EKespBaudRate3);
  using Getter = EKespBaudRate3 (CKespCOMPort3::*)() const;
  using Values = std::vector<std::int32_t>;

  const Raised no_rate_{com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED, L"CKespCOMPort3 - BaudRate",
                        L"Baud rate not supported."};
  // Both ends of the range report as the maximum.
  const Raised no_end_{com_port_error::ERR_BAUD_RATE_NOT_SUPPORTED, L"CKespCOMPort3 - MaxBaudRate",
                       L"Baud rate not supported."};
  const Raised minimum_too_high_{com_port_error::ERR_INVALID_BAUD_RATE, L"CKespCOMPort3 - MaxBaudRate",
                                 L"Cannot set minimum baud rate higher than maximum baud rate."};
  const Raised maximum_too_low_{com_port_error::ERR_INVALID_BAUD_RATE, L"CKespCOMPort3 - MaxBaudRate",
                                L"Cannot set maximum baud rate lower than minimum baud rate."};
};

TEST_F(CKespCOMPort3SettingsTest, RatesThatFitTheRange_AreStored) {
  struct Case {
    Setter set;
    Getter get;
    std::int32_t lowest;
    std::int32_t highest;
    Values values;
  };
  const Case cases[] = {
      {&CKespCOMPort3::SetBaudRate, &CKespCOMPort3::BaudRate, -1, -1, {-1}},
      {&CKespCOMPort3::SetBaudRate, &CKespCOMPort3::BaudRate, -1, 6, {-1, 0, 1, 2, 3, 4, 5, 6}},
      {&CKespCOMPort3::SetBaudRate, &CKespCOMPort3::BaudRate, 4, 8, {4, 8, 6}},
      {&CKespCOMPort3::SetMinBaudRate, &CKespCOMPort3::MinBaudRate, -1, -1, {-1}},
      {&CKespCOMPort3::SetMinBaudRate, &CKespCOMPort3::MinBaudRate, 4, 13, {13, 8, 0, -1}},
      {&CKespCOMPort3::SetMaxBaudRate, &CKespCOMPort3::MaxBaudRate, -1, -1, {-1, 0, 8, 13}},
      {&CKespCOMPort3::SetMaxBaudRate, &CKespCOMPort3::MaxBaudRate, 4, 8, {4}},
  };
  for (const Case& c : cases) {
    for (const std::int32_t value : c.values) {
      SCOPED_TRACE(testing::Message() << c.lowest << " " << c.highest << " " << value);
      AllowRates(-1, 13, -1);
      AllowRates(c.lowest, c.highest, c.lowest);
      (port_.*c.set)(Rate(value));
      EXPECT_EQ((port_.*c.get)(), Rate(value));
    }
  }
}

// What is no rate is refused before the order is looked at.
TEST_F(CKespCOMPort3SettingsTest, RatesThatDoNotFitTheRange_AreRefused) {
  struct Case {
    Setter set;
    std::int32_t lowest;
    std::int32_t highest;
    Values values;
    Raised refusal;
  };
  const Values no_rates{-2, 14, kLowest32, kHighest32};
  const Case cases[] = {
      {&CKespCOMPort3::SetBaudRate, -1, -1, {0, 6, 13}, no_rate_},
      {&CKespCOMPort3::SetBaudRate, -1, 6, {7}, no_rate_},
      {&CKespCOMPort3::SetBaudRate, 4, 8, {-1, 0, 3, 9, 13}, no_rate_},
      {&CKespCOMPort3::SetBaudRate, 4, 8, no_rates, no_rate_},
      {&CKespCOMPort3::SetMinBaudRate, -1, -1, {0, 13}, minimum_too_high_},
      {&CKespCOMPort3::SetMinBaudRate, 4, 8, {9, 13}, minimum_too_high_},
      {&CKespCOMPort3::SetMinBaudRate, 4, 8, no_rates, no_end_},
      {&CKespCOMPort3::SetMaxBaudRate, 4, 8, {-1, 3}, maximum_too_low_},
      {&CKespCOMPort3::SetMaxBaudRate, 4, 8, no_rates, no_end_},
  };
  for (const Case& c : cases) {
    AllowRates(-1, 13, -1);
    AllowRates(c.lowest, c.highest, c.lowest);
    for (const std::int32_t value : c.values) {
      SCOPED_TRACE(testing::Message() << c.lowest << " " << c.highest << " " << value);
      ExpectRefused([&] { (port_.*c.set)(Rate(value)); }, c.refusal);
    }
  }
}

TEST_F(CKespCOMPort3SettingsTest, RangeMovedAwayFromTheRate_RateStays) {
  AllowRates(4, 8, 4);
  port_.SetMinBaudRate(EKespBaudRate3::br9600);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br2400);
  port_.SetBaudRate(EKespBaudRate3::br38400);
  port_.SetMaxBaudRate(EKespBaudRate3::br9600);
  EXPECT_EQ(port_.BaudRate(), EKespBaudRate3::br38400);
}

TEST_F(CKespCOMPort3SettingsTest, Text_IsRateParityDataBitsAndStopBits) {
  struct Case {
    std::int32_t rate;
    std::int32_t parity;
    std::int32_t data_bits;
    std::int32_t stop_bits;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {
      {-1, 0, 4, 0, L"<unknown>,N,8,1"}, {13, 0, 4, 0, L"921600,N,8,1"}, {6, 1, 4, 0, L"9600,E,8,1"},
      {6, 2, 4, 0, L"9600,O,8,1"},       {6, 3, 4, 0, L"9600,M,8,1"},    {6, 4, 4, 0, L"9600,S,8,1"},
      {6, -1, 4, 0, L"9600,N,8,1"},      {6, 5, 4, 0, L"9600,N,8,1"},    {6, 0, 0, 0, L"9600,N,4,1"},
      {6, 0, 1, 0, L"9600,N,5,1"},       {6, 0, 2, 0, L"9600,N,6,1"},    {6, 0, 3, 0, L"9600,N,7,1"},
      {6, 0, -1, 0, L"9600,N,8,1"},      {6, 0, 5, 0, L"9600,N,8,1"},    {6, 0, 4, 1, L"9600,N,8,1.5"},
      {6, 0, 4, 2, L"9600,N,8,2"},       {6, 0, 4, -1, L"9600,N,8,1"},   {6, 0, 4, 3, L"9600,N,8,1"},
      {0, 3, 1, 1, L"150,M,5,1.5"},
  };
  for (const Case& c : kCases) {
    AllowRates(-1, 13, c.rate);
    port_.SetParity(As<EKespParity3>(c.parity));
    port_.SetDataBits(As<EKespDataBits3>(c.data_bits));
    port_.SetStopBits(As<EKespStopBits3>(c.stop_bits));
    EXPECT_EQ(port_.GetSettings(), c.text);
  }
}

TEST_F(CKespCOMPort3SettingsTest, BaudRateName_DoesNotDependOnTheSettings) {
  EXPECT_EQ(port_.BaudRateName(EKespBaudRate3::br921600), L"921600");
  EXPECT_EQ(port_.BaudRateName(EKespBaudRate3::brNone), L"<unknown>");
}

TEST_F(CKespCOMPort3SettingsTest, StyleSet_FramingFollowsAndNothingElse) {
  struct Case {
    std::int32_t style;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {{0, L"4800,N,8,1"}, {1, L"4800,E,7,1"},  {3, L"4800,N,8,1"},
                             {4, L"4800,N,8,1"}, {-1, L"4800,N,8,1"}, {kHighest32, L"4800,N,8,1"}};
  AllowRates(4, 7, 5);
  port_.SetCheckNonAscii(false);
  port_.SetTimeOut(77);
  const auto before = SettingsOf(port_);
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.style);
    port_.SetParity(EKespParity3::PARITY_SPACE);
    port_.SetDataBits(EKespDataBits3::DATA_5BITS);
    port_.SetStopBits(EKespStopBits3::STOP_2BITS);
    port_.SetControllerStyle(As<EKespControllerStyle3>(c.style));
    EXPECT_EQ(static_cast<std::int32_t>(port_.ControllerStyle()), c.style);
    EXPECT_EQ(port_.GetSettings(), c.text);
    EXPECT_TRUE(SettingsOf(port_) == before);
  }
}

// Whatever range there was before; a new object has none.
TEST_F(CKespCOMPort3SettingsTest, PrecidiaSet_OverwritesRatesReadSettingsAndTimeOut) {
  for (const bool is_new : {true, false}) {
    if (!is_new) AllowRates(10, 13, 12);
    port_.SetParity(EKespParity3::PARITY_SPACE);
    port_.SetCheckNonAscii(false);
    port_.SetStripCRLF(true);
    port_.SetTerminateOnLF(true);
    port_.SetTimeOut(9000);
    port_.SetControllerStyle(EKespControllerStyle3::CS_PRECIDIA);
    EXPECT_EQ(port_.GetSettings(), L"9600,N,8,1");
    EXPECT_EQ(port_.MinBaudRate(), EKespBaudRate3::br9600);
    EXPECT_EQ(port_.MaxBaudRate(), EKespBaudRate3::br9600);
    EXPECT_TRUE(port_.CheckNonAscii());
    EXPECT_FALSE(port_.StripCRLF());
    EXPECT_FALSE(port_.TerminateOnLF());
    EXPECT_EQ(port_.TimeOut(), 250);
    AllowRates(6, 13, 6);
  }
  const auto before = SettingsOf(port_);
  port_.SetControllerStyle(EKespControllerStyle3::CS_OMEGA);
  EXPECT_EQ(port_.GetSettings(), L"9600,E,7,1");
  EXPECT_TRUE(SettingsOf(port_) == before);
}

}  // namespace
}  // namespace kesp
