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
#include "support/failure.h"

namespace kesp {
namespace {

constexpr std::int16_t kLowest16 = std::numeric_limits<std::int16_t>::min();
constexpr std::int16_t kHighest16 = std::numeric_limits<std::int16_t>::max();

// Every setting of the object, to show what a call changed and what it left.
auto Settings(const CKespIEEE& ieee) {
  return std::tuple(ieee.ClearDevice(), ieee.SetEOS(), ieee.TimeOutSecs(), ieee.PrimaryAddress(),
                    ieee.SecondaryAddress(), ieee.BoardIndex(), ieee.EOSChar(), ieee.GetKey(),
                    ieee.CreateLogFile(), ieee.LogFilename());
}

class CKespIEEETest : public testing::Test {
 protected:
  // Expects that set(value) throws this failure and changes no setting.
  void ExpectRefused(void (CKespIEEE::*set)(std::int16_t), std::int16_t value, std::int32_t number,
                     const wchar_t* source, const wchar_t* description) {
    const auto before = Settings(ieee_);
    try {
      (ieee_.*set)(value);
      ADD_FAILURE() << "accepted " << value;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number(), number);
      EXPECT_EQ(failure.source(), source);
      EXPECT_EQ(failure.description(), description);
    }
    EXPECT_TRUE(Settings(ieee_) == before) << value;
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

TEST_F(CKespIEEETest, TwoObjects_HaveDifferentKeys) {
  const CKespIEEE other(environment_.environment, driver_);
  EXPECT_NE(ieee_.GetKey(), other.GetKey());
}

TEST_F(CKespIEEETest, PrimaryAddressInRange_IsStored) {
  for (std::int16_t value = 1; value <= 30; ++value) {
    ieee_.SetPrimaryAddress(value);
    EXPECT_EQ(ieee_.PrimaryAddress(), value);
  }
}

TEST_F(CKespIEEETest, PrimaryAddressOutOfRange_IsRefused) {
  ieee_.SetPrimaryAddress(22);
  for (const std::int16_t value :
       {std::int16_t{0}, std::int16_t{-1}, std::int16_t{31}, kLowest16, kHighest16}) {
    ExpectRefused(&CKespIEEE::SetPrimaryAddress, value, ieee_error::ERR_INVALID_PRIMARY_ADDRESS,
                  L"[CKespIEEE - PrimaryAddress]", L"Invalid primary address.");
  }
}

TEST_F(CKespIEEETest, SecondaryAddressInRange_IsStored) {
  for (std::int16_t value = 30; value >= 0; --value) {
    ieee_.SetSecondaryAddress(value);
    EXPECT_EQ(ieee_.SecondaryAddress(), value);
  }
}

TEST_F(CKespIEEETest, SecondaryAddressOutOfRange_IsRefused) {
  ieee_.SetSecondaryAddress(5);
  for (const std::int16_t value :
       {std::int16_t{-1}, std::int16_t{31}, std::int16_t{96}, kLowest16, kHighest16}) {
    ExpectRefused(&CKespIEEE::SetSecondaryAddress, value, ieee_error::ERR_INVALID_SECONDARY_ADDRESS,
                  L"[CKespIEEE - SecondaryAddress]", L"Invalid secondary address.");
  }
}

TEST_F(CKespIEEETest, BoardIndexZero_IsAccepted) {
  ieee_.SetBoardIndex(0);
  EXPECT_EQ(ieee_.BoardIndex(), 0);
}

TEST_F(CKespIEEETest, AnyOtherBoardIndex_IsRefused) {
  for (const std::int16_t value : {std::int16_t{1}, std::int16_t{-1}, kLowest16, kHighest16}) {
    ExpectRefused(&CKespIEEE::SetBoardIndex, value, ieee_error::ERR_INVALID_BOARD_INDEX,
                  L"[CKespIEEE - BoardIndex]", L"Invalid board index.");
  }
}

TEST_F(CKespIEEETest, EveryTimeOutCode_IsStored) {
  for (std::int32_t value = 0; value <= 17; ++value) {
    ieee_.SetTimeOutSecs(static_cast<ETimeOutSecs>(value));
    EXPECT_EQ(static_cast<std::int32_t>(ieee_.TimeOutSecs()), value);
  }
}

TEST_F(CKespIEEETest, TimeOutCodeWithoutName_IsStored) {
  for (const std::int32_t value : {-1, 18, std::numeric_limits<std::int32_t>::max()}) {
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

TEST_F(CKespIEEETest, AnyEOSChar_IsStored) {
  for (const std::wstring& value : {std::wstring(L"10"), std::wstring(L"\n"), std::wstring(L"no number"),
                                    std::wstring(L"1\0", 2), std::wstring()}) {
    ieee_.SetEOSChar(value);
    EXPECT_EQ(ieee_.EOSChar(), value);
  }
}

TEST_F(CKespIEEETest, AnyLogFilename_IsStored) {
  for (const std::wstring& name : {std::wstring(LR"(C:\logs\bus.log)"), std::wstring()}) {
    ieee_.SetLogFilename(name);
    EXPECT_EQ(ieee_.LogFilename(), name);
  }
}

}  // namespace
}  // namespace kesp
