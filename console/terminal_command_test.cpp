// "kesp terminal": what is said, failures that it goes on after, and its own words.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "console/command_fixture.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

class TerminalCommandTest : public CommandFixture {
 protected:
  TerminalCommandTest() {
    options_.talk.address = "com3";
    library_.Answer("*IDN?", "KESP,7100\r\n");
    library_.on_exchange = [this] { clock_.Advance(std::chrono::microseconds(12'340)); };
  }

  int Talk(std::deque<std::string> lines) {
    console_.typed = std::move(lines);
    return Run(options_);
  }
  int TalkFromAFile(std::deque<std::string> lines) {
    console_.typed_at = false;
    return Talk(std::move(lines));
  }

  TerminalOptions options_;
};

TEST_F(TerminalCommandTest, Reply_WithTheTimeAndTheDuration) {
  EXPECT_EQ(Talk({"*IDN?", "", ":send *RST"}), kExitDone);
  EXPECT_EQ(console_.output,
            "14:05:09.012      12.3 ms  KESP,7100\n"
            "14:05:09.024      12.3 ms  sent\n");
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Query *IDN?", "Update *RST"}));
  EXPECT_TRUE(library_.tunings.front().keep_open);
  EXPECT_EQ(console_.prompts.front(), "com3> ");
  EXPECT_EQ(console_.error, ":help lists the words of the terminal, :quit leaves\n");
}

TEST_F(TerminalCommandTest, FromAFile_NoGreeting) {
  EXPECT_EQ(TalkFromAFile({"*IDN?"}), kExitDone);
  EXPECT_EQ(console_.error, "");
}

TEST_F(TerminalCommandTest, Quit_LeavesTheRest) {
  EXPECT_EQ(Talk({":QUIT", "*IDN?"}), kExitDone);
  EXPECT_EQ(library_.calls, std::vector<std::string>{"At com3"});
}

TEST_F(TerminalCommandTest, QueryFails_ToldAndTheTerminalGoesOn) {
  EXPECT_EQ(TalkFromAFile({"NO?", "*IDN?"}), kExitFailed);
  EXPECT_NE(console_.error.find("14:05:09.012      12.3 ms  Timeout (cfrTimeout, [CKespTCP - ReadLine()])"),
            std::string::npos);
  EXPECT_EQ(console_.output, "14:05:09.024      12.3 ms  KESP,7100\n");
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Query NO?", "Query *IDN?"}));
}

TEST_F(TerminalCommandTest, QueryFailsWhereAPersonTypes_TheExitCodeSaysNothing) {
  EXPECT_EQ(Talk({"NO?"}), kExitDone);
}

TEST_F(TerminalCommandTest, ThePortFails_ToldWithWhatHelpsAndTheTerminalGoesOn) {
  library_.Fail("A?", LibraryError("cfrReadFailed", "CKespCOMPort3 - ReadLine() [commCOMControl]",
                                   "Error reading comm device"));
  Talk({"*IDN?", ":timeout 5s", "A?", "*IDN?"});
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Query *IDN?", "SetTimeout 5000", "Query A?",
                                                      "Query *IDN?"}));
  EXPECT_NE(console_.error.find(
                "[commCOMControl])\n  The port gives nothing any more: plug the adapter in again, and"),
            std::string::npos);
}

TEST_F(TerminalCommandTest, NothingComes_ToldWhatHelps) {
  LibraryError silence("cfrTimeout", "CKespCOMPort3 - ReadLine()", "Timeout");
  silence.received = 0;
  library_.Fail("A?", silence);
  Talk({"A?"});
  EXPECT_NE(
      console_.error.find("ReadLine())\n  Nothing was received: \"kesp detect com3\" looks for the bit rate"),
      std::string::npos)
      << console_.error;
}

TEST_F(TerminalCommandTest, ALoneReturnEndedTheReply_ToldBelowIt) {
  library_.waited = std::chrono::milliseconds(700);
  Talk({"*IDN?"});
  EXPECT_EQ(console_.error.find("no line feed came"), std::string::npos);
  Talk({":timeout 500", "*IDN?"});
  EXPECT_NE(console_.error.find("  no line feed came"), std::string::npos);
}

TEST_F(TerminalCommandTest, TimeoutThatIsRefused_ChangesNothing) {
  library_.set_timeout_fails = [] { throw UsageError("the longest timeout is 1 s"); };
  library_.waited = std::chrono::milliseconds(3000);
  EXPECT_EQ(TalkFromAFile({":timeout 40s", "*IDN?"}), kExitFailed);
  EXPECT_EQ(console_.error.find("the longest timeout is 1 s\n  no line feed came"), 0U) << console_.error;
}

TEST_F(TerminalCommandTest, TimeoutOfTheCommandLineThatIsRefused_ToldBeforeAnythingIsTyped) {
  around_.library = []() -> Library& { throw UsageError("the longest timeout is 1 s"); };
  EXPECT_EQ(Talk({"*IDN?"}), kExitUsage);
  EXPECT_TRUE(console_.prompts.empty());
}

TEST_F(TerminalCommandTest, LibraryThatIsNotThere_HasACodeOfItsOwn) {
  around_.library = []() -> Library& { throw NoLibrary("KespCommObj.dll is not there"); };
  EXPECT_EQ(Talk({"*IDN?"}), kExitNoLibrary);
  EXPECT_EQ(console_.error, "kesp: KespCommObj.dll is not there\n");
}

TEST_F(TerminalCommandTest, StandardOutputThatIsFull_NothingFurtherIsSent) {
  console_.full = true;
  EXPECT_EQ(TalkFromAFile({"*IDN?", "*IDN?"}), kExitFailed);
  EXPECT_EQ(library_.calls, (std::vector<std::string>{"At com3", "Query *IDN?"}));
  EXPECT_EQ(console_.error.find("kesp: standard output: No space left"), 0U);
}

TEST_F(TerminalCommandTest, ControllerThatGetsNothing_Refused) {
  options_.talk.address = "com3,precidia";
  EXPECT_EQ(Talk({"*IDN?"}), kExitUsage);
  EXPECT_EQ(console_.error,
            "kesp: the library sends nothing to a controller of the kind \"precidia\", on purpose: leave "
            "\",precidia\" out\n");
}

TEST_F(TerminalCommandTest, Hex_ShowsBytesUntilItIsSaidAgain) {
  library_.Answer("D?", std::string("\0\x0D\xFF", 3));
  Talk({":hex", "D?", ":hex", "*IDN?"});
  EXPECT_EQ(console_.output,
            "14:05:09.012      12.3 ms  00 0D FF\n"
            "14:05:09.024      12.3 ms  KESP,7100\n");
  EXPECT_EQ(library_.calls[1], "QueryBinary D?");
}

TEST_F(TerminalCommandTest, Log_HasWhatIsSaidFromThenOn) {
  const std::filesystem::path file = std::filesystem::path(testing::TempDir()) / "kesp-conversation.txt";
  std::filesystem::remove(file);
  Talk({"*IDN?", ":log \"" + file.string() + '"', "*IDN?", "NO?", ":log", "*IDN?"});
  std::ifstream stream(file);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}),
            "2026-11-22T14:05:09.012 > *IDN?\n"
            "2026-11-22T14:05:09.024 < KESP,7100\n"
            "2026-11-22T14:05:09.024 > NO?\n"
            "2026-11-22T14:05:09.037 ! Timeout (cfrTimeout, [CKespTCP - ReadLine()])\n");
  std::filesystem::remove(file);
}

TEST_F(TerminalCommandTest, LogThatCannotBeWritten_ToldAndTheTerminalGoesOn) {
  EXPECT_EQ(TalkFromAFile({":log /no/such/folder", "*IDN?", ":log /dev/full", "*IDN?", "*IDN?"}),
            kExitFailed);
  EXPECT_EQ(console_.error,
            "/no/such/folder cannot be written\n"
            "/dev/full cannot be written any more; the log ends here\n");
  EXPECT_EQ(library_.calls.size(), 4U);
}

TEST_F(TerminalCommandTest, WordsThatAreNone_AreToldAndNothingIsSent) {
  EXPECT_EQ(TalkFromAFile({":MEAS?", ":timeout soon"}), kExitFailed);
  EXPECT_EQ(console_.error,
            "\":MEAS?\" is not a word of the terminal, which :help lists; to send it, write \"::MEAS?\"\n"
            "\"soon\" is not a time such as 500ms, 5000 or 2s\n");
  EXPECT_EQ(library_.calls.size(), 1U);
}

TEST_F(TerminalCommandTest, CtrlC_LeavesAtThePromptAndEndsAWaitAtOnce) {
  std::vector<Console::OnInterrupt> seen;
  library_.on_exchange = [&] { seen.push_back(console_.on_interrupt); };
  console_.on_read = [&] {
    seen.push_back(console_.on_interrupt);
    if (console_.prompts.size() == 3) console_.Interrupt();
  };
  EXPECT_EQ(Talk({"*IDN?", "NO?", "*IDN?"}), kExitDone);
  using enum Console::OnInterrupt;
  EXPECT_EQ(seen, (std::vector<Console::OnInterrupt>{kNote, kEnd, kNote, kEnd, kNote}));
}

TEST_F(TerminalCommandTest, CtrlCWhileAnotherProgramIsToWriteTheNextLine_EndsAtOnce) {
  console_.on_read = [&] { EXPECT_EQ(console_.on_interrupt, Console::OnInterrupt::kEnd); };
  EXPECT_EQ(TalkFromAFile({"*IDN?", "*IDN?"}), kExitDone);
}

TEST_F(TerminalCommandTest, Gap_GoesToTheInstrument) {
  options_.gap_ms = 500;
  Talk({"*IDN?"});
  EXPECT_EQ(library_.tunings.front().gap_ms, 500);
}

TEST_F(TerminalCommandTest, MistakeInTheAddress_ToldBeforeAnythingIsTyped) {
  options_.talk.address = "com0";
  EXPECT_EQ(Talk({"*IDN?"}), kExitUsage);
  EXPECT_TRUE(console_.prompts.empty());
}

}  // namespace
}  // namespace kesp::console
