// Unit tests of opening and closing a device.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "gpib/kesp_ieee_fixture.h"

namespace kesp {
namespace {

constexpr wchar_t kDriverSource[] = L"[CKespIEEE - InitializeIEEEBoard()]";
constexpr wchar_t kClosingSource[] = L"[CKespIEEE - Uninitialize()]";

class IeeeDeviceTest : public IeeeFixture {
 protected:
  Raised Refusal() {
    return RaisedBy([this] { ieee_.Initialize(); });
  }
  Raised ClosingRefusal() {
    return RaisedBy([this] { ieee_.Uninitialize(); });
  }
};

TEST_F(IeeeDeviceTest, Initialize_OpensClearsAndSetsTheEnd) {
  ieee_.SetCreateLogFile(true);
  EXPECT_TRUE(ieee_.Initialize());
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)"}));
  EXPECT_EQ(Logged(),
            (Lines{L"Initialize()", L"Check Board Index...", L"Check Primary Address...",
                   L"Check Secondary Address...", L"Init Board...", L"InitializeIEEEBoard()...", L"ibdev()",
                   L"ibclr()", L"ibeos()", L"InitializeIEEEBoard() Done...", L"Initialize() Done..."}));
}

TEST_F(IeeeDeviceTest, Initialize_LogOff_WritesNone) {
  ieee_.Initialize();
  EXPECT_TRUE(Logged().empty());
}

TEST_F(IeeeDeviceTest, Initialize_ClearDeviceOff_LeavesOutTheClear) {
  ieee_.SetClearDevice(false);
  ieee_.SetCreateLogFile(true);
  ieee_.Initialize();
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibeos(7,1073)"}));
  EXPECT_EQ(Logged()[7], L"ibeos()");
}

TEST_F(IeeeDeviceTest, Initialize_SetEosOff_LeavesOutTheEnd) {
  ieee_.SetSetEOS(false);
  ieee_.SetEOSChar(L"");
  ieee_.SetCreateLogFile(true);
  ieee_.Initialize();
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)"}));
  EXPECT_EQ(Logged()[8], L"InitializeIEEEBoard() Done...");
}

TEST_F(IeeeDeviceTest, Initialize_HandsOverAddressesAndTimeOutCodeAsTheyAre) {
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

TEST_F(IeeeDeviceTest, Initialize_EosCharEmpty_IsRefusedAtTheEndAndNoDeviceStaysOpen) {
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

TEST_F(IeeeDeviceTest, Initialize_IbdevFails_IsLoggedAndRaised) {
  Answer("ibdev", GpibOutcome::Failure(7));
  ieee_.SetCreateLogFile(true);
  EXPECT_EQ(Refusal(), (Raised{ieee_error::ERR_IBDEV, kDriverSource,
                               L"Error calling ibdev(): Error: 7 - Non-existent interface board"}));
  EXPECT_EQ(Logged().back(), L"Error ibdev()- Error: 7 - Non-existent interface board");
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_IbclrFails_IsLoggedAndRaisedAndTheDeviceGivenBack) {
  Answer("ibclr", GpibOutcome::Failure(2));
  ieee_.SetCreateLogFile(true);
  EXPECT_EQ(Refusal(), (Raised{ieee_error::ERR_IBCLR, kDriverSource,
                               L"Error calling ibclr(): Error: 2 - Write function detected no listeners"}));
  EXPECT_EQ(Logged().back(), L"Error ibclr()- Error: 2 - Write function detected no listeners");
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibonl(7,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_IbeosFails_IsLoggedAndRaisedAndTheDeviceGivenBack) {
  Answer("ibeos", GpibOutcome::Failure(4));
  ieee_.SetCreateLogFile(true);
  EXPECT_EQ(Refusal(), (Raised{ieee_error::ERR_IBEOS, kDriverSource,
                               L"Error calling ibeos(): Error: 4 - Invalid argument to function call"}));
  EXPECT_EQ(Logged().back(), L"Error ibeos()- Error: 4 - Invalid argument to function call");
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibclr(7)", "ibeos(7,1073)", "ibonl(7,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_TextOfTheFailureIsThatOfTheFirstCall) {
  Answer("ibclr", GpibOutcome::Failure(2));
  Answer("ibonl", GpibOutcome::Failure(14));
  EXPECT_EQ(Refusal().description, L"Error calling ibclr(): Error: 2 - Write function detected no listeners");
}

TEST_F(IeeeDeviceTest, Initialize_DriverMissing_IsLoggedAndRaised_LaterCallTriesAgain) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  ieee_.SetCreateLogFile(true);
  const std::wstring description = L"File not found: Gpib-32.dll (the GPIB driver is not installed)";
  EXPECT_EQ(Refusal(), (Raised{53, kDriverSource, description}));
  EXPECT_EQ(Logged().back(), L"Error ibdev()- " + description);
  EXPECT_TRUE(ieee_.Uninitialize());
  bus_.load_errors.clear();
  EXPECT_TRUE(ieee_.Initialize());
}

TEST_F(IeeeDeviceTest, Initialize_DescriptorDoesNotFit_IsClosedAndAnOverflow) {
  for (const int descriptor : {40000, 65541}) {
    Answer("ibdev", {.result = descriptor});
    const std::wstring number = std::to_wstring(descriptor);
    EXPECT_EQ(Refusal(), (Raised{6, kDriverSource, L"Overflow (the driver's descriptor " + number + L")"}));
    EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibonl(" + std::to_string(descriptor) + ",0)"}));
    EXPECT_EQ(ClosingRefusal().number, ieee_error::ERR_INVALID_DEVICE);
  }
}

TEST_F(IeeeDeviceTest, Initialize_NegativeDescriptorWithoutFailure_IsAFailure) {
  Answer("ibdev", {.result = -1});
  EXPECT_EQ(Refusal(), (Raised{ieee_error::ERR_IBDEV, kDriverSource,
                               L"Error calling ibdev(): Error: 0 - System error"}));
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_DescriptorWithAFailure_IsClosed) {
  Answer("ibdev", {.status = 0x8100, .error = 4, .result = 9});
  EXPECT_EQ(Refusal().number, ieee_error::ERR_IBDEV);
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)", "ibonl(9,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_BoardsDescriptorWithAFailure_BoardStaysOnline) {
  Answer("ibdev", {.status = 0x8100, .error = 4, .result = 0});
  EXPECT_EQ(Refusal().number, ieee_error::ERR_IBDEV);
  EXPECT_EQ(Heard(), (Calls{"ibdev(0,5,0,12,1,0)"}));
}

TEST_F(IeeeDeviceTest, Initialize_HighestDescriptor_Fits) {
  Answer("ibdev", {.result = 32767});
  EXPECT_TRUE(ieee_.Initialize());
  EXPECT_EQ(Heard()[1], "ibclr(32767)");
}

TEST_F(IeeeDeviceTest, Initialize_DescriptorZero_IsClosedLikeAnyOther) {
  Answer("ibdev", {.result = 0});
  EXPECT_TRUE(ieee_.Initialize());
  Heard();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(0,0)", "ibonl(0,0)"}));
}

TEST_F(IeeeDeviceTest, InitializeTwice_ClosesTheFirstDevice) {
  ieee_.Initialize();
  Heard();
  EXPECT_TRUE(ieee_.Initialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibdev(0,5,0,12,1,0)", "ibclr(8)", "ibeos(8,1073)"}));
  ieee_.Uninitialize();
  EXPECT_EQ(Heard(), (Calls{"ibonl(8,0)", "ibonl(0,0)"}));
}

TEST_F(IeeeDeviceTest, InitializeAgainFails_NothingIsLeftToClose) {
  ieee_.Initialize();
  Answer("ibeos", GpibOutcome::Failure(4));
  EXPECT_EQ(Refusal().number, ieee_error::ERR_IBEOS);
  Heard();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(IeeeDeviceTest, Uninitialize_TakesDeviceAndBoardOffline) {
  ieee_.Initialize();
  Heard();
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibonl(0,0)"}));
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(IeeeDeviceTest, Uninitialize_NeverOpened_NeedsNoDriver) {
  bus_.load_errors[L"Gpib-32.dll"] = kGpibLibraryNotFound;
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_TRUE(bus_.loads.empty());
}

TEST_F(IeeeDeviceTest, Uninitialize_AfterIbdevFailed_IsAnInvalidDevice) {
  Answer("ibdev", GpibOutcome::Failure(7));
  Refusal();
  EXPECT_EQ(ClosingRefusal(), (Raised{ieee_error::ERR_INVALID_DEVICE, kClosingSource, L"Invalid device."}));
}

TEST_F(IeeeDeviceTest, Uninitialize_DeviceFails_HasTheSourceOfOpeningAndStaysOpen) {
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

TEST_F(IeeeDeviceTest, Uninitialize_BoardFails_HasTheSourceOfOpening) {
  ieee_.Initialize();
  bus_.failing_call = 5;
  EXPECT_EQ(ClosingRefusal(),
            (Raised{ieee_error::ERR_IBONL, kDriverSource,
                    L"Error calling ibonl() for board: Error: 14 - Command error during device call"}));
  EXPECT_EQ(Heard().back(), "ibonl(0,0)");
  EXPECT_TRUE(ieee_.Uninitialize());
  EXPECT_EQ(Heard(), (Calls{"ibonl(0,0)"}));
}

TEST_F(IeeeDeviceTest, InitializeAfterTheBoardDidNotClose_ClosesNoDeviceTwice) {
  ieee_.Initialize();
  bus_.failing_call = 5;
  EXPECT_EQ(ClosingRefusal().number, ieee_error::ERR_IBONL);
  Heard();
  ieee_.Initialize();
  EXPECT_EQ(Heard().front(), "ibdev(0,5,0,12,1,0)");
}

TEST_F(IeeeDeviceTest, ClosedDevice_WritesGoToItsDescriptorAndFail) {
  ieee_.Initialize();
  ieee_.Uninitialize();
  EXPECT_EQ(RaisedBy([this] { ieee_.WriteLine(L"t"); }).description,
            L"Error calling ibwrt() with command 't' on device 7: Error: 0 - System error");
}

TEST_F(IeeeDeviceTest, Released_OpenDeviceIsClosed) {
  auto open = std::make_unique<CKespIEEE>(environment_.environment, driver_);
  open->SetEOSChar(L"10");
  open->Initialize();
  Heard();
  open.reset();
  EXPECT_EQ(Heard(), (Calls{"ibonl(7,0)", "ibonl(0,0)"}));
}

TEST_F(IeeeDeviceTest, ReleasedWhenClosingFails_IsGoneAllTheSame) {
  auto open = std::make_unique<CKespIEEE>(environment_.environment, driver_);
  open->SetEOSChar(L"10");
  open->Initialize();
  Answer("ibonl", GpibOutcome::Failure(0));
  EXPECT_NO_THROW(open.reset());
}

}  // namespace
}  // namespace kesp
