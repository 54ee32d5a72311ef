// Unit tests of opening and closing a device.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "gpib/kesp_ieee_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kDriverSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";
constexpr wchar_t kClosingSource[] = L"[CKespIEEE - Uninitialize()]";

class CKespIEEEDeviceTest : public IeeeFixture {
 protected:
  Raised Refusal() {
    return RaisedBy([this] { ieee_.Initialize(); });
  }
  Raised ClosingRefusal() {
    return RaisedBy([this] { ieee_.Uninitialize(); });
  }
};

TEST_F(CKespIEEEDeviceTest, Initialize_OpensClearsAndSetsTheEnd) {
  ieee_.SetCreateLogFile(true);
  EXPECT_TRUE(ieee_.Initialize());
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)"}));
  EXPECT_EQ(Logged(),
            (Lines{L"Initialize()", L"Check Board Index...", L"Check Primary Address...",
                   L"Check Secondary Address...", L"Init Board...", L"InitializeIEEEBoard()...", L"ibdev()",
                   L"ibclr()", L"ibeos()", L"InitializeIEEEBoard() Done...", L"Initialize() Done..."}));
}

TEST_F(CKespIEEEDeviceTest, Initialize_WithoutClearOrEnd_LeavesThemOut) {
  ieee_.SetClearDevice(false);
  ieee_.SetCreateLogFile(true);
  ieee_.Initialize();
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibeos(7,1073)"}));
  EXPECT_EQ(Logged()[7], L"ibeos()");
  ieee_.SetSetEOS(false);
  ieee_.SetEOSChar(L"");
  ieee_.SetCreateLogFile(false);
  ieee_.Initialize();
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibdev(0,5,0,12,1,0)"}));
  EXPECT_EQ(Logged().size(), 10U) << "nothing more was written";
}

TEST_F(CKespIEEEDeviceTest, Initialize_HandsOverAddressesAndTimeOutCodeAsTheyAre) {
  ieee_.SetPrimaryAddress(30);
  ieee_.SetSecondaryAddress(29);
  for (std::int32_t code = 0; code <= 17; ++code) {
    ieee_.SetTimeOutSecs(static_cast<ETimeOutSecs>(code));
    ieee_.Initialize();
    EXPECT_EQ(Heard()[0], "ibdev(0,30,29," + std::to_string(code) + ",1,0)");
    ieee_.Uninitialize();
    Heard();
  }
}

TEST_F(CKespIEEEDeviceTest, Initialize_EosCharEmpty_IsRefusedAtTheEndAndNoDeviceStaysOpen) {
  ieee_.SetEOSChar(L"");
  ieee_.SetCreateLogFile(true);
  const std::wstring description =
      L"Invalid procedure call or argument (EOSChar is empty, so no character can end a read; set it, or set "
      L"SetEOS to False)";
  EXPECT_EQ(Refusal(), (Raised{5, kDriverSource, description}));
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibonl(7,0)"}));
  EXPECT_EQ(Logged().back(), L"Error ibeos()- " + description);
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(CKespIEEEDeviceTest, Initialize_CallFails_IsLoggedAndRaisedAndTheDeviceGivenBack) {
  struct Example {
    const wchar_t* call;
    std::int32_t number;
    Calls heard;
  };
  bus_.answers["ibdev"] = [] { return GpibOutcome{.result = 7}; };
  ieee_.SetCreateLogFile(true);
  int nth = 0;
  for (const Example& example :
       {Example{L"ibdev()", ieee_error::ERR_IBDEV, {"ibdev(0,5,0,12,1,0)"}},
        Example{L"ibclr()", ieee_error::ERR_IBCLR, {"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibonl(7,0)"}},
        Example{L"ibeos()",
                ieee_error::ERR_IBEOS,
                {"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibonl(7,0)"}}}) {
    bus_.faults.Fail(++nth);
    const std::wstring text = L"Error: 14 - Command error during device call";
    EXPECT_EQ(Refusal(), (Raised{example.number, kDriverSource,
                                 L"Error calling " + std::wstring(example.call) + L": " + text}));
    EXPECT_EQ(Logged().back(), L"Error " + std::wstring(example.call) + L"- " + text);
    EXPECT_EQ(Heard(), example.heard);
  }
}

TEST_F(CKespIEEEDeviceTest, Initialize_TextOfTheFailureIsThatOfTheFirstCall) {
  Answer("ibclr", GpibOutcome::Failure(2));
  Answer("ibonl", GpibOutcome::Failure(14));
  EXPECT_EQ(Refusal().description, L"Error calling ibclr(): Error: 2 - Write function detected no listeners");
}

TEST_F(CKespIEEEDeviceTest, Initialize_DriverMissing_IsLoggedAndRaised_LaterCallTriesAgain) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  ieee_.SetCreateLogFile(true);
  const std::wstring description = L"File not found: Gpib-32.dll (the GPIB driver is not installed)";
  EXPECT_EQ(Refusal(), (Raised{53, kDriverSource, description}));
  EXPECT_EQ(Logged().back(), L"Error ibdev()- " + description);
  EXPECT_TRUE(ieee_.Uninitialize());
  bus_.load_errors.clear();
  EXPECT_TRUE(ieee_.Initialize());
}

TEST_F(CKespIEEEDeviceTest, Initialize_DescriptorDoesNotFit_IsClosedAndAnOverflow) {
  for (const int descriptor : {32768, 40000, 65541}) {
    Answer("ibdev", {.result = descriptor});
    const std::wstring number = std::to_wstring(descriptor);
    EXPECT_EQ(Refusal(), (Raised{6, kDriverSource, L"Overflow (the driver's descriptor " + number + L")"}));
    EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibonl(" + std::to_string(descriptor) + ",0)"}));
    EXPECT_EQ(ClosingRefusal().number, ieee_error::ERR_INVALID_DEVICE);
  }
}

// The board's own descriptor is 0: with a failure it is left alone, without one it is a device's like any
// other.
TEST_F(CKespIEEEDeviceTest, Initialize_DescriptorWithAFailure_IsClosedUnlessTheBoards) {
  for (const auto& [descriptor, closing] :
       {std::pair<int, Calls>{-1, {}}, {0, {}}, {1, {"ibonl(1,0)"}}, {32767, {"ibonl(32767,0)"}}}) {
    Answer("ibdev", {.status = 0x8100, .error = 4, .result = descriptor});
    EXPECT_EQ(Refusal().number, ieee_error::ERR_IBDEV);
    Calls expected{"ibdev(0,5,0,12,1,0)"};
    expected.insert(expected.end(), closing.begin(), closing.end());
    EXPECT_EQ(Heard(), expected);
  }
}

TEST_F(CKespIEEEDeviceTest, Initialize_LowestAndHighestDescriptor_AreUsedAndClosed) {
  for (const std::string number : {"0", "32767"}) {
    Answer("ibdev", {.result = std::stoi(number)});
    EXPECT_TRUE(ieee_.Initialize());
    EXPECT_EQ(Heard()[1], "ibclr(" + number + ")");
    EXPECT_TRUE(ieee_.Uninitialize());
    EXPECT_EQ(Heard(), (Calls{"ibonl(" + number + ",0)", "ibonl(0,0)"}));
  }
}

TEST_F(CKespIEEEDeviceTest, Initialize_NegativeDescriptorWithoutFailure_IsAFailure) {
  Answer("ibdev", {.result = -1});
  EXPECT_EQ(Refusal(), (Raised{ieee_error::ERR_IBDEV, kDriverSource,
                               L"Error calling ibdev(): Error: 0 - System error"}));
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)"}));
}

TEST_F(CKespIEEEDeviceTest, InitializeTwice_ClosesTheFirstDevice) {
  ieee_.Initialize();
  Heard();
  EXPECT_TRUE(ieee_.Initialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibdev(0,5,0,12,1,0)", "ibclr(8)", "ibeos(8,1073)"}));
  ieee_.Uninitialize();
  EXPECT_EQ(Heard(), (Calls{"ibonl(8,0)", "ibonl(0,0)"}));
}

TEST_F(CKespIEEEDeviceTest, InitializeAgainFails_NothingIsLeftToClose) {
  ieee_.Initialize();
  Answer("ibeos", GpibOutcome::Failure(4));
  EXPECT_EQ(Refusal().number, ieee_error::ERR_IBEOS);
  Heard();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(CKespIEEEDeviceTest, Uninitialize_TakesDeviceAndBoardOffline) {
  ieee_.Initialize();
  Heard();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibonl(0,0)"}));
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(CKespIEEEDeviceTest, Uninitialize_NeverOpened_NeedsNoDriver) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(bus_.loads.empty());
}

TEST_F(CKespIEEEDeviceTest, Uninitialize_AfterIbdevFailed_IsAnInvalidDevice) {
  Answer("ibdev", GpibOutcome::Failure(7));
  Refusal();
  EXPECT_EQ(ClosingRefusal(), (Raised{ieee_error::ERR_INVALID_DEVICE, kClosingSource, L"Invalid device."}));
}

TEST_F(CKespIEEEDeviceTest, Uninitialize_DeviceFails_HasTheSourceOfOpeningAndStaysOpen) {
  ieee_.Initialize();
  Answer("ibonl", GpibOutcome::Failure(14));
  Heard();
  EXPECT_EQ(ClosingRefusal(),
            (Raised{ieee_error::ERR_IBONL, kDriverSource,
                    L"Error calling ibonl() for device: Error: 14 - Command error during device call"}));
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)"}));
  bus_.answers.clear();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibonl(0,0)"}));
}

TEST_F(CKespIEEEDeviceTest, Uninitialize_BoardFails_HasTheSourceOfOpening) {
  ieee_.Initialize();
  bus_.faults.Fail(2);
  EXPECT_EQ(ClosingRefusal(),
            (Raised{ieee_error::ERR_IBONL, kDriverSource,
                    L"Error calling ibonl() for board: Error: 14 - Command error during device call"}));
  EXPECT_EQ(Heard().back(), "ibonl(0,0)");
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(0,0)"}));
}

TEST_F(CKespIEEEDeviceTest, InitializeAfterTheBoardDidNotClose_ClosesNoDeviceTwice) {
  ieee_.Initialize();
  bus_.faults.Fail(2);
  EXPECT_EQ(ClosingRefusal().number, ieee_error::ERR_IBONL);
  Heard();
  ieee_.Initialize();
  EXPECT_EQ(Heard().front(), "ibdev(0,5,0,12,1,0)");
}

TEST_F(CKespIEEEDeviceTest, ClosedDevice_WritesGoToItsDescriptorAndFail) {
  ieee_.Initialize();
  ieee_.Uninitialize();
  EXPECT_EQ(RaisedBy([this] { ieee_.WriteLine(L"t"); }).description,
            L"Error calling ibwrt() with command 't' on device 7: Error: 0 - System error");
}

TEST_F(CKespIEEEDeviceTest, Released_OpenDeviceIsClosed) {
  auto open = std::make_unique<CKespIEEE>(environment_.environment, driver_);
  open->SetEOSChar(L"10");
  open->Initialize();
  Heard();
  open.reset();
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibonl(0,0)"}));
}

TEST_F(CKespIEEEDeviceTest, ReleasedWhenClosingFails_IsGoneAllTheSame) {
  auto open = std::make_unique<CKespIEEE>(environment_.environment, driver_);
  open->SetEOSChar(L"10");
  open->Initialize();
  Answer("ibonl", GpibOutcome::Failure(0));
  EXPECT_NO_THROW(open.reset());
}

}  // namespace
}  // namespace kesp
