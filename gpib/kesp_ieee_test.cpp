// Unit tests of the IEEE-488 transport's settings: defaults, rules and key.
#include "gpib/kesp_ieee.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <tuple>

#include "gpib/gpib_driver_fake.h"
#include "support/environment_fake.h"
#include "support/error_numbers.h"
#include "support/failure_fixture.h"

namespace kesp {
namespace {

constexpr int kLowest16 = std::numeric_limits<std::int16_t>::min();
constexpr int kHighest16 = std::numeric_limits<std::int16_t>::max();

// Every setting of the object, to show what a call changed and what it left.
auto Settings(const CKespIEEE& ieee) {
  return std::tuple(ieee.ClearDevice(), ieee.SetEOS(), ieee.TimeOutSecs(), ieee.PrimaryAddress(),
                    ieee.SecondaryAddress(), ieee.BoardIndex(), ieee.EOSChar(), ieee.GetKey(),
                    ieee.CreateLogFile(), ieee.LogFilename());
}

class CKespIEEETest : public testing::Test {
 protected:
  // Expects that values from lowest to highest are stored, and that others are refused and change no setting.
  void ExpectRange(std::int16_t (CKespIEEE::*get)() const, void (CKespIEEE::*set)(std::int16_t), int lowest,
                   int highest, const Raised& refusal) {
    const auto put = [&](int value) { (ieee_.*set)(static_cast<std::int16_t>(value)); };
    for (int value = lowest; value <= highest; ++value) {
      put(value);
      EXPECT_EQ((ieee_.*get)(), value);
    }
    const auto before = Settings(ieee_);
    for (const int value : {kLowest16, lowest - 1, highest + 1, 96, kHighest16}) {
      EXPECT_EQ(RaisedBy([&] { put(value); }), refusal) << value;
      EXPECT_TRUE(Settings(ieee_) == before) << value;
    }
  }

  EnvironmentFake environment_;
  GpibDriverFake bus_;
  GpibThreadsFake threads_;
  GpibDriver driver_{bus_, threads_};
  CKespIEEE ieee_{environment_.environment, driver_};
};

TEST_F(CKespIEEETest, Created_SettingsHaveTheirDefaults) {
  EXPECT_EQ(ieee_.BoardIndex(), 0);
  EXPECT_EQ(ieee_.PrimaryAddress(), 1);
  EXPECT_EQ(ieee_.SecondaryAddress(), 0);
  EXPECT_EQ(ieee_.TimeOutSecs(), ETimeOutSecs::to3s);
  EXPECT_TRUE(ieee_.ClearDevice());
  EXPECT_TRUE(ieee_.SetEOS());
  EXPECT_EQ(ieee_.EOSChar(), L"");
  EXPECT_FALSE(ieee_.CreateLogFile());
  EXPECT_EQ(ieee_.LogFilename(), L"CKespIEEE.log");
}

TEST_F(CKespIEEETest, Created_KeyIsTenDigitsOfNewGuidAndK) {
  environment_.guids.Push({0x3F2A9C01, 0xD4E5, 0x1234, {}});
  const CKespIEEE created(environment_.environment, driver_);
  EXPECT_EQ(created.GetKey(), L"3F2A9C01D4K");
}

TEST_F(CKespIEEETest, CreatedWithoutGuid_KeyIsK) {
  environment_.guids.Fail();
  const CKespIEEE created(environment_.environment, driver_);
  EXPECT_EQ(created.GetKey(), L"K");
}

TEST_F(CKespIEEETest, Addresses_AreStoredInTheirRangeAndRefusedBeyondIt) {
  ExpectRange(&CKespIEEE::PrimaryAddress, &CKespIEEE::SetPrimaryAddress, 1, 30,
              {ieee_error::ERR_INVALID_PRIMARY_ADDRESS, L"[CKespIEEE - PrimaryAddress]",
               L"Invalid primary address."});
  ExpectRange(&CKespIEEE::SecondaryAddress, &CKespIEEE::SetSecondaryAddress, 0, 30,
              {ieee_error::ERR_INVALID_SECONDARY_ADDRESS, L"[CKespIEEE - SecondaryAddress]",
               L"Invalid secondary address."});
  ExpectRange(&CKespIEEE::BoardIndex, &CKespIEEE::SetBoardIndex, 0, 0,
              {ieee_error::ERR_INVALID_BOARD_INDEX, L"[CKespIEEE - BoardIndex]", L"Invalid board index."});
}

TEST_F(CKespIEEETest, AnyTimeOutCode_IsStored) {
  for (const std::int32_t value : {-1, 0, 11, 17, 18, std::numeric_limits<std::int32_t>::max()}) {
    ieee_.SetTimeOutSecs(static_cast<ETimeOutSecs>(value));
    EXPECT_EQ(static_cast<std::int32_t>(ieee_.TimeOutSecs()), value);
  }
}

TEST_F(CKespIEEETest, PlainSwitches_AreStored) {
  struct Case {
    const char* name;
    bool (CKespIEEE::*get)() const;
    void (CKespIEEE::*set)(bool);
  };
  constexpr Case kCases[] = {
      {"ClearDevice", &CKespIEEE::ClearDevice, &CKespIEEE::SetClearDevice},
      {"SetEOS", &CKespIEEE::SetEOS, &CKespIEEE::SetSetEOS},
      {"CreateLogFile", &CKespIEEE::CreateLogFile, &CKespIEEE::SetCreateLogFile},
  };
  for (const Case& c : kCases) {
    const auto before = Settings(ieee_);
    const bool first = (ieee_.*c.get)();
    (ieee_.*c.set)(!first);
    EXPECT_EQ((ieee_.*c.get)(), !first) << c.name;
    (ieee_.*c.set)(first);
    EXPECT_TRUE(Settings(ieee_) == before) << c.name;
  }
}

TEST_F(CKespIEEETest, AnyText_IsStored) {
  for (const std::wstring& value :
       {std::wstring(LR"(C:\logs\bus.log)"), std::wstring(L"1\0", 2), std::wstring()}) {
    ieee_.SetEOSChar(value + L"10");
    ieee_.SetLogFilename(value);
    EXPECT_EQ(ieee_.EOSChar(), value + L"10");
    EXPECT_EQ(ieee_.LogFilename(), value);
  }
}

}  // namespace
}  // namespace kesp
