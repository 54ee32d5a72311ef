// "kesp query" with a library and a console of the tests.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "console/command_fixture.h"

namespace kesp::console {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class QueryCommand : public CommandFixture {
 protected:
  QueryCommand() {
    library_.Answer("*IDN?", "KESP,7100,SIM00001,1.0");
    options_.talk.address = "tcp:a";
    options_.commands = {"*IDN?"};
  }

  int Query() { return Run(options_); }

  QueryOptions options_;
};

TEST_F(QueryCommand, Reply_StandsAloneOnStandardOutput) {
  options_.talk.timeout_ms = 2000;
  options_.talk.trace = "t.log";
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "KESP,7100,SIM00001,1.0\n");
  EXPECT_EQ(console_.error, "");
  EXPECT_THAT(library_.calls, ElementsAre("At tcp:a", "Query *IDN?"));
  EXPECT_EQ(library_.tunings.at(0).timeout_ms, 2000);
  EXPECT_EQ(library_.tunings.at(0).trace, "t.log");
  EXPECT_FALSE(library_.tunings.at(0).keep_open || library_.tunings.at(0).crlf_as_is);
  EXPECT_EQ(console_.on_interrupt, Console::OnInterrupt::kEnd);
}

TEST_F(QueryCommand, SeveralCommands_AreAskedOneAfterTheOtherOnAnOpenPort) {
  options_.commands = {"*IDN?", "t"};
  library_.Answer("t", "21.5");
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "KESP,7100,SIM00001,1.0\n21.5\n");
  EXPECT_TRUE(library_.tunings.at(0).keep_open);
}

TEST_F(QueryCommand, Failure_IsToldAndEndsIt) {
  options_.commands = {"*IDN?", "X?", "*IDN?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(console_.output, "KESP,7100,SIM00001,1.0\n");
  EXPECT_EQ(console_.error, "kesp: Timeout (cfrTimeout, [CKespTCP - ReadLine()])\n");
  EXPECT_THAT(library_.calls, ElementsAre("At tcp:a", "Query *IDN?", "Query X?"));
}

TEST_F(QueryCommand, FailureOfAKnownKind_ComesWithAHint) {
  LibraryError silence("cfrTimeout", "[CKespTCP - ReadLine()]", "Timeout");
  silence.received = 3;
  library_.Fail("S?", silence);
  options_.commands = {"S?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(
      console_.error,
      "kesp: Timeout (cfrTimeout, [CKespTCP - ReadLine()])\n"
      "  3 bytes came without the end character 13: \",eos=CODE\" behind the address names another one, "
      "\",any\" takes what comes (docs\\no-answer.md#a-part-comes-then-a-timeout).\n");
  options_.json = true;
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_THAT(console_.output, testing::HasSubstr(R"("hint":"3 bytes came)"));
}

TEST_F(QueryCommand, ReplyThatALoneReturnEnded_ComesWithAHint) {
  options_.talk.address = "com3";
  library_.waited = milliseconds(3001);
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "KESP,7100,SIM00001,1.0\n");
  EXPECT_EQ(console_.error,
            "kesp: no line feed came, a lone carriage return ended the data when the time was up: add "
            "\",cr\" to the "
            "address (docs\\no-answer.md#each-reply-takes-exactly-the-timeout)\n");
}

TEST_F(QueryCommand, MistakeInTheAddress_IsShownWithItsPlace) {
  options_.talk.address = "com3@9601";
  EXPECT_EQ(Query(), kExitUsage);
  EXPECT_THAT(console_.error, testing::StartsWith("kesp: a mistake in the address\n  com3@9601\n       ^\n"));
  EXPECT_TRUE(library_.calls.empty());
}

TEST_F(QueryCommand, LibraryThatIsNotThere_HasACodeOfItsOwn) {
  around_.library = []() -> Library& { throw NoLibrary("C:\\KespCommObj.dll is not there"); };
  EXPECT_EQ(Query(), kExitNoLibrary);
  EXPECT_EQ(console_.error, "kesp: C:\\KespCommObj.dll is not there\n");
}

TEST_F(QueryCommand, StandardOutputThatIsFull_IsTold) {
  console_.full = true;
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_THAT(console_.error, testing::StartsWith("kesp: standard output: No space left"));
}

TEST_F(QueryCommand, OnTheGpib_TheLineEndIsTakenAwayUnlessItIsToStay) {
  options_.talk.address = "gpib:5";
  options_.commands = {"R?"};
  library_.Answer("R?", "1.0\r\n");
  EXPECT_EQ(Query(), kExitDone);
  options_.crlf_as_is = true;
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "1.0\n1.0\r\n");
  EXPECT_TRUE(library_.tunings.at(1).crlf_as_is);
}

TEST_F(QueryCommand, OnTheGpib_AReplyThatMayBeCutIsNoted) {
  options_.talk.address = "gpib:5";
  library_.Answer("49", std::string(49, 'x'));
  library_.Answer("50", std::string(50, 'x'));
  options_.commands = {"49"};
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.error, "");
  options_.commands = {"50"};
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.error,
            "kesp: the library reads 50 characters of a reply on the GPIB; there may be more\n");
}

TEST_F(QueryCommand, OnTheGpib_BytesAndSearchesAreRefused) {
  options_.talk.address = "gpib:5";
  options_.hex = true;
  EXPECT_EQ(Query(), kExitUsage);
  EXPECT_EQ(console_.error, "kesp: on the GPIB the library reads text only: leave out --hex and --binary\n");
  console_.error.clear();
  options_.talk.address = "gpib:,eos=13";
  EXPECT_EQ(Query(), kExitUsage);
  EXPECT_EQ(console_.error,
            "kesp: a mistake in the address\n  gpib:,eos=13\n       ^\n"
            "  expected here: a primary address: 1 to 30; \"kesp detect\" looks for one\n");
  EXPECT_TRUE(library_.calls.empty());
}

TEST_F(QueryCommand, ControllerThatGetsNothing_Refused) {
  for (const char* address : {"com3,precidia", "usb:A1,precidia"}) {
    options_.talk.address = address;
    EXPECT_EQ(Query(), kExitUsage);
  }
  EXPECT_THAT(console_.error, testing::HasSubstr("the library sends nothing to a controller"));
}

TEST_F(QueryCommand, Gap_IsForBytes) {
  options_.gap_ms = 500;
  EXPECT_EQ(Query(), kExitUsage);
  EXPECT_EQ(console_.error,
            "kesp: a text reply ends with its end character: --gap is for --hex and --binary\n");
  options_.hex = true;
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(library_.tunings.back().gap_ms, 500);
}

TEST_F(QueryCommand, Hex_ShowsTheBytes) {
  options_.hex = true;
  options_.commands = {"B?"};
  library_.Answer("B?", std::string("\0\r\xFF", 3));
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "00 0D FF\n");
  EXPECT_THAT(library_.calls, ElementsAre("At tcp:a", "QueryBinary B?"));
}

TEST_F(QueryCommand, Json_IsAnObjectForEachReply) {
  options_.json = true;
  options_.commands = {"*IDN?", "\u00B5\"?"};
  library_.Answer("\u00B5\"?", "a\r\nb");
  library_.on_exchange = [this] { clock_.Advance(milliseconds(12)); };
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            R"({"time":"2026-11-22T14:05:09.000","address":"tcp:a","command":"*IDN?",)"
            R"("reply":"KESP,7100,SIM00001,1.0","seconds":0.012})"
            "\n"
            R"({"time":"2026-11-22T14:05:09.000","address":"tcp:a","command":"µ\"?","reply":"a\r\nb",)"
            R"("seconds":0.012})"
            "\n");
}

TEST_F(QueryCommand, Json_TellsAFailureInPlaceOfTheReply) {
  options_.json = true;
  options_.commands = {"X?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(console_.output,
            R"({"time":"2026-11-22T14:05:09.000","address":"tcp:a","command":"X?","error":{"description":)"
            R"("Timeout","status":"cfrTimeout","source":"[CKespTCP - ReadLine()]"},"seconds":0.0})"
            "\n");
  EXPECT_EQ(console_.error, "kesp: Timeout (cfrTimeout, [CKespTCP - ReadLine()])\n");
}

TEST_F(QueryCommand, Csv_IsALineForTheRoundBelowTheCommands) {
  options_.csv = true;
  options_.commands = {"*IDN?", "say \"a,b\"", "t"};
  library_.Answer("say \"a,b\"", "a \"b\"");
  library_.Answer("t", "21.5");
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            "*IDN?,\"say \"\"a,b\"\"\",t\r\n"
            "\"KESP,7100,SIM00001,1.0\",\"a \"\"b\"\"\",21.5\r\n");
}

TEST_F(QueryCommand, CsvOfAFailure_KeepsWhatCameBefore) {
  options_.csv = true;
  options_.commands = {"*IDN?", "X?", "*IDN?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(console_.output, "*IDN?,X?,*IDN?\r\n\"KESP,7100,SIM00001,1.0\",,\r\n");
}

class RepeatedQuery : public QueryCommand {
 protected:
  RepeatedQuery() {
    options_.commands = {"t"};
    options_.repeat = 3;
    options_.every_ms = 1000;
    for (const char* value : {"21.1", "21.2", "21.3", "21.4"}) library_.Answer("t", value);
  }

  // Each exchange takes that long, the last one from then on.
  void Take(std::deque<milliseconds> durations) {
    library_.on_exchange = [this, durations]() mutable {
      clock_.Advance(durations.front());
      if (durations.size() > 1) durations.pop_front();
    };
  }
};

TEST_F(RepeatedQuery, Rounds_BeginOnTimeWhateverTheyTake) {
  Take({milliseconds(300), milliseconds(999), milliseconds(1)});
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            "2026-11-22T14:05:09.000\t21.1\n2026-11-22T14:05:10.000\t21.2\n2026-11-22T14:05:11.000\t21.3\n");
  EXPECT_THAT(clock_.sleeps, ElementsAre(milliseconds(700), milliseconds(1)));
  EXPECT_THAT(console_.progress, ElementsAre("1 of 3", "2 of 3", "3 of 3", ""));
  EXPECT_TRUE(library_.tunings.at(0).keep_open);
  EXPECT_EQ(console_.on_interrupt, Console::OnInterrupt::kNote);
}

TEST_F(RepeatedQuery, LateRound_LeavesOutTheMomentsThatHavePassed) {
  Take({milliseconds(2500), milliseconds(1000), milliseconds(0)});
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            "2026-11-22T14:05:09.000\t21.1\n2026-11-22T14:05:12.000\t21.2\n2026-11-22T14:05:13.000\t21.3\n");
  EXPECT_THAT(clock_.sleeps, ElementsAre(milliseconds(500)));
}

TEST_F(RepeatedQuery, WithoutAnInterval_ThereIsNoWaiting) {
  options_.every_ms = 0;
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_TRUE(clock_.sleeps.empty());
  EXPECT_THAT(library_.calls, ElementsAre("At tcp:a", "Query t", "Query t", "Query t"));
}

TEST_F(RepeatedQuery, FailingRound_IsToldAndTheOthersGoOn) {
  options_.commands = {"t", "F?"};
  library_.Answer("F?", "1");
  library_.Fail("F?", LibraryError("cfrNoConnection", "", "No connection"));
  library_.Answer("F?", "3");
  options_.csv = true;
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(console_.output,
            "time,t,F?\r\n2026-11-22T14:05:09.000,21.1,1\r\n2026-11-22T14:05:10.000,21.2,\r\n"
            "2026-11-22T14:05:11.000,21.3,3\r\n");
  EXPECT_EQ(console_.error, "kesp: 2026-11-22T14:05:10.000 F?: No connection (cfrNoConnection)\n");
  EXPECT_THAT(console_.progress, ElementsAre("1 of 3", "2 of 3, 1 failed", "3 of 3, 1 failed", ""));
}

TEST_F(RepeatedQuery, FailureOfAKnownKind_ItsHintIsToldOnce) {
  LibraryError silence("cfrTimeout", "", "Timeout");
  silence.received = 0;
  options_.commands = {"t", "S?"};
  library_.Fail("S?", silence);
  EXPECT_EQ(Query(), kExitFailed);
  const std::string hint = "\n  Nothing was received: ";
  const std::size_t place = console_.error.find(hint);
  EXPECT_NE(place, std::string::npos);
  EXPECT_EQ(console_.error.find(hint, place + 1), std::string::npos);
}

TEST_F(RepeatedQuery, Once_HasTheTimeInFront) {
  options_.repeat = 1;
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output, "2026-11-22T14:05:09.000\t21.1\n");
}

TEST_F(RepeatedQuery, CtrlC_EndsItBeforeAllIsDone) {
  clock_.on_sleep = [this] { console_.Interrupt(); };
  EXPECT_EQ(Query(), kExitInterrupted);
  EXPECT_EQ(console_.output, "2026-11-22T14:05:09.000\t21.1\n");
}

TEST_F(RepeatedQuery, WithoutAnEnd_CtrlCIsTheEnd) {
  options_.repeat = 0;
  console_.InterruptAfter(4);
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(library_.calls.size(), 5U);
  EXPECT_THAT(console_.progress, ElementsAre("1", "2", "3", "4", ""));
}

TEST_F(RepeatedQuery, RepliesAsTheyAre_StillStandOnLinesOfTheirOwn) {
  options_.commands = {"R?", "N?"};
  options_.repeat = 2;
  options_.crlf_as_is = true;
  library_.Answer("R?", "1\r");
  library_.Answer("N?", "2\r\n");
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            "2026-11-22T14:05:09.000\t1\r\n2026-11-22T14:05:09.000\t2\r\n"
            "2026-11-22T14:05:10.000\t1\r\n2026-11-22T14:05:10.000\t2\r\n");
}

class QueryIntoFile : public QueryCommand {
 protected:
  QueryIntoFile() {
    options_.commands = {"B?"};
    options_.binary = path_.string();
    library_.Answer("B?", std::string("\0\r\n\xFF", 4));
  }
  ~QueryIntoFile() override { remove_all(path_.parent_path()); }

  std::string Content() const {
    std::ifstream file(path_, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
  }

  static std::filesystem::path NewFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kesp.XXXXXX").string();
    return mkdtemp(name.data());
  }

  std::filesystem::path path_ = NewFolder() / "reply.bin";
};

TEST_F(QueryIntoFile, Bytes_AreInTheFileAndNothingOnStandardOutput) {
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(Content(), std::string("\0\r\n\xFF", 4));
  EXPECT_EQ(console_.output + console_.error, "");
}

TEST_F(QueryIntoFile, Json_TellsWhatWasSaved) {
  options_.json = true;
  options_.commands = {"B?", "B?"};
  options_.binary = (path_.parent_path() / "two.bin").string();
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_EQ(console_.output,
            R"({"address":"tcp:a","commands":["B?","B?"],"file":")" + options_.binary + "\",\"bytes\":8}\n");
}

TEST_F(QueryIntoFile, Failure_LeavesNoFileAndAnOldOneAlone) {
  options_.commands = {"X?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_TRUE(is_empty(path_.parent_path()));
  std::ofstream(path_) << "old";
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_EQ(Content(), "old");
}

TEST_F(QueryIntoFile, FailureOfALaterCommand_KeepsWhatCameBefore) {
  options_.commands = {"B?", "X?"};
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_FALSE(exists(path_));
  EXPECT_EQ(std::filesystem::file_size(path_.string() + ".part"), 4U);
  EXPECT_THAT(console_.error, testing::StartsWith("kesp: the 4 bytes that had come are in " + path_.string() +
                                                  ".part\nkesp: Timeout"));
}

TEST_F(QueryIntoFile, FileThatCannotBeWritten_IsToldBeforeAnythingIsSent) {
  options_.binary = (path_.parent_path() / "none" / "reply.bin").string();
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_THAT(console_.error, testing::HasSubstr("reply.bin cannot be written: No such file"));
  EXPECT_THAT(library_.calls, ElementsAre("At tcp:a"));
}

TEST_F(QueryIntoFile, FullDisk_IsToldAndLeavesNothingBehind) {
  std::filesystem::create_symlink("/dev/full", path_.string() + ".part");
  EXPECT_EQ(Query(), kExitFailed);
  EXPECT_THAT(console_.error, testing::HasSubstr("reply.bin cannot be written: No space left on device"));
  EXPECT_TRUE(is_empty(path_.parent_path()));
}

TEST_F(QueryIntoFile, CtrlC_EndsItAtOnceAndLeavesWhatCameBefore) {
  options_.commands = {"B?", "B?"};
  std::vector<bool> parts;
  library_.on_exchange = [&] {
    EXPECT_EQ(console_.on_interrupt, Console::OnInterrupt::kEnd);
    parts.push_back(std::filesystem::exists(path_.string() + ".part"));
  };
  EXPECT_EQ(Query(), kExitDone);
  EXPECT_THAT(parts, ElementsAre(false, true));
}

}  // namespace
}  // namespace kesp::console
