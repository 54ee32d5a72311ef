// "kesp detect": progress, what is found, and how it ends otherwise.
#include <gtest/gtest.h>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

class DetectCommandTest : public CommandFixture {
 protected:
  DetectCommandTest() {
    options_.talk.address = "com3";
    library_.steps = {
        {"57600 baud", "*IDN?", 1, 3}, {"57600 baud", "*VER", 2, 3}, {"9600 baud", "*IDN?", 3, 3}};
    ComAddress found;
    found.port = 3;
    found.line.baud = 9600;
    library_.found_at = found;
  }

  int Detect() { return Run(options_); }

  DetectOptions options_;
};

TEST_F(DetectCommandTest, SomebodyAnswers_AddressAndAnswerWithoutItsLineEnd) {
  library_.detected = "KESP,7100\r\n";
  EXPECT_EQ(Detect(), kExitDone);
  EXPECT_EQ(console_.output, "com3@9600  KESP,7100\n");
  EXPECT_EQ(console_.error, "");
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Detect 3"}));
  EXPECT_EQ(console_.progress,
            (std::vector<std::string>{"57600 baud, *IDN? \u2026 1 of 3", "57600 baud, *VER \u2026 2 of 3",
                                      "9600 baud, *IDN? \u2026 3 of 3", ""}));
}

TEST_F(DetectCommandTest, Json_OneObject) {
  options_.json = true;
  options_.level = 1;
  library_.detected = "a\"b\xFF";
  EXPECT_EQ(Detect(), kExitDone);
  EXPECT_EQ(console_.output, "{\"address\":\"com3@9600\",\"answer\":\"a\\\"b\uFFFD\"}\n");
  EXPECT_EQ(library_.calls.back(), "Detect 1");
}

TEST_F(DetectCommandTest, NobodyAnswers_ToldWithTheNumberOfAttempts) {
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_EQ(console_.output, "");
  EXPECT_EQ(console_.error, "kesp: nobody answers at com3 (3 commands tried)\n");
}

TEST_F(DetectCommandTest, NothingCouldBeTried_ThereIsNoConnection) {
  options_.talk.address = "tcp:10.0.0.7";
  library_.steps.clear();
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: no connection to tcp:10.0.0.7\n");
}

TEST_F(DetectCommandTest, CtrlC_Aborts) {
  library_.detected = "KESP";
  console_.InterruptAfter(1);
  EXPECT_EQ(Detect(), kExitInterrupted);
  EXPECT_TRUE(library_.aborted);
  EXPECT_EQ(console_.output, "");
  EXPECT_EQ(console_.error, "kesp: ended by Ctrl-C; nobody had answered at com3 (1 command tried)\n");
}

TEST_F(DetectCommandTest, Timeout_EndsTheWholeSearch) {
  options_.talk.timeout_ms = 0;
  library_.detected = "KESP";
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: nobody answers at com3 (0 commands tried)\n");
  EXPECT_TRUE(library_.aborted);
  EXPECT_EQ(library_.tunings.front().timeout_ms, std::nullopt);
}

TEST_F(DetectCommandTest, ThePortIsHeld_ToldWhatHelps) {
  library_.detection_fails = LibraryError("error 8005", "", "Port already open");
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_EQ(console_.error,
            "kesp: Port already open (error 8005)\n  Another program holds the port: close it there"
            " (docs\\no-answer.md#access-denied).\n");
}

TEST_F(DetectCommandTest, FailureWithoutAStatus_HasNoEmptyBrackets) {
  library_.detection_fails = LibraryError("", "", "Something else");
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: Something else\n");
}

TEST_F(DetectCommandTest, ThePortFails_TheLibraryTellsWhy) {
  library_.detection_fails =
      LibraryError("8002", "CKespCOMPort3 - OpenPort() [commCOMControl]", "Invalid port number");
  EXPECT_EQ(Detect(), kExitFailed);
  EXPECT_NE(console_.error.find("Invalid port number (8002, CKespCOMPort3 - OpenPort() [commCOMControl])"),
            std::string::npos);
}

}  // namespace
}  // namespace kesp::console
