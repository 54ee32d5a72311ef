// Unit tests around the serial transport's port: availability, buffers, input mode, and the log's lines.
#include <string>
#include <vector>

#include "serial/kesp_com_port_fixture.h"

namespace kesp {
namespace {

class CKespCOMPort3AvailabilityTest : public SerialConversationTest {};

TEST_F(CKespCOMPort3AvailabilityTest, Availability_FollowsTheCode) {
  struct Case {
    std::int32_t code;
    bool exists;
    bool available;
  };
  constexpr Case kCases[] = {{0, true, true}, {2, false, false}, {5, true, false},
                             {1, true, true}, {31, true, true},  {-1, true, true}};
  for (const Case& c : kCases) {
    ports_.code = c.code;
    EXPECT_EQ(port_.PortExists(7), c.exists) << c.code;
    EXPECT_EQ(port_.IsPortAvailable(kLowest16), c.available) << c.code;
  }
  EXPECT_EQ(ports_.asked.size(), 12u);
  EXPECT_EQ(ports_.asked[0], 7);
  EXPECT_EQ(ports_.asked[1], kLowest16);
  EXPECT_EQ(record_, Lines{});
}

TEST_F(CKespCOMPort3AvailabilityTest, Availability_CannotBeFoundOut_IsShownAndFalse) {
  ports_.probing_fails = true;
  EXPECT_FALSE(port_.PortExists(12));
  EXPECT_FALSE(port_.IsPortAvailable(13));
  ASSERT_EQ(environment_.user.boxes().size(), 2u);
  const std::wstring error = L".\r\nError: 51 - Internal error (the ports cannot be listed)\r\n(KespCommObj)";
  EXPECT_EQ(environment_.user.boxes()[0].text,
            L"An error occurred while attempting to determine if COM12 exists" + error);
  EXPECT_EQ(environment_.user.boxes()[1].text,
            L"An error occurred while attempting to determine if COM13 is currently available" + error);
  for (const MessageBoxRequest& box : environment_.user.boxes()) {
    EXPECT_EQ(box.title, L"Kesp Communications Error");
    EXPECT_EQ(box.style, 16);
  }
}

TEST_F(CKespCOMPort3AvailabilityTest, ClearBuffers_OutputBeforeInputBehindTheLogLine) {
  Open();
  port_.ClearBuffers();
  StartLog();
  port_.ClearBuffers();
  EXPECT_EQ(record_, (Lines{L"ClearOut", L"ClearIn", L"Log Clearing buffers...", L"ClearOut", L"ClearIn"}));
}

TEST_F(CKespCOMPort3AvailabilityTest, ClearBuffers_DiscardsWhatHasArrived) {
  Open();
  ports_.line.Arrive("stale\r\n");
  ports_.line.Arrive("fresh\r\n", 5);
  port_.ClearBuffers();
  std::wstring reply;
  EXPECT_TRUE(port_.ReadLine(reply));
  EXPECT_EQ(reply, L"fresh");
}

TEST_F(CKespCOMPort3AvailabilityTest, ClearBuffers_ClosedPort_RaisesTheControlsFailure) {
  EXPECT_EQ(RaisedBy([&] { port_.ClearBuffers(); }),
            (Raised{8018, L"commCOMControl", L"Operation valid only when the port is open"}));
}

TEST_F(CKespCOMPort3AvailabilityTest, SetInputMode_OnlyTheTwoModesAreTaken) {
  EXPECT_EQ(port_.InputMode(), EInputMode::imText);
  port_.SetInputMode(EInputMode::imBinary);
  EXPECT_EQ(port_.InputMode(), EInputMode::imBinary);
  for (const std::int32_t other : {2, -1, kLowest32, kHighest32}) {
    port_.SetInputMode(As<EInputMode>(other));
    EXPECT_EQ(port_.InputMode(), EInputMode::imBinary) << other;
  }
  port_.SetInputMode(EInputMode::imText);
  port_.SetInputMode(As<EInputMode>(2));
  EXPECT_EQ(port_.InputMode(), EInputMode::imText);
}

TEST_F(CKespCOMPort3AvailabilityTest, Log_RadioModemInUse_EveryLineEndsWithTheAddress) {
  StartLog();
  port_.SetInstrAddr(12);
  port_.OpenPort();
  port_.SetUseRFModem(true);
  port_.ClosePort();
  EXPECT_EQ(LogLines(), (Lines{L"Opening COM port 1 with settings 9600,N,8,1",
                               L"Closing COM port 1 (RF address 12)", L"Closed COM port 1 (RF address 12)"}));
}

TEST_F(CKespCOMPort3AvailabilityTest, Log_Line_HasDateTickAndMessageAndGoesToTheNamedFile) {
  StartLog();
  port_.SetLogFilename(L"D:\\serial.log");
  Open();
  EXPECT_EQ(environment_.files.Content(L"D:\\serial.log"),
            "17/05/2024 12:34:56\t1000000\tOpening COM port 1 with settings 9600,N,8,1\r\n");
  EXPECT_EQ(environment_.files.files().size(), 1u);
}

TEST_F(CKespCOMPort3AvailabilityTest, Log_CannotBeWritten_ChangesNothing) {
  StartLog();
  environment_.files.Refuse(FilesFake::Operation::kAppend);
  EXPECT_TRUE(port_.OpenPort());
  port_.ClosePort();
  EXPECT_FALSE(ports_.line.open);
}

}  // namespace
}  // namespace kesp
