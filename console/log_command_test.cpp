// "kesp log" with files that are there, grow, are cut and are replaced.
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "console/command_fixture.h"
#include "console/file_pieces.h"

namespace kesp::console {
namespace {

namespace fs = std::filesystem;

constexpr char kHead[] =
    "WHEN                         MS  PLACE                   COMMAND             REPLY\n";

// A query of 7 ms at this time.
std::string Query(const std::string& when, const std::string& command, const std::string& reply) {
  const std::string begin = when + "\t";
  return begin + "100\tBeginning Query()... (command: " + command + ")\r\n" + begin +
         "101\tIEEE: Initialize()\r\n" + begin + "101\tCheck Board Index...\r\n" + begin +
         "102\tIEEE: WriteLine(" + command + ")\r\n" + begin + "102\tIEEE: ReadLine()\r\n" + begin +
         "106\tIEEE: result- " + reply + "\n\r\n" + begin + "107\tExiting Query()...(command: " + command +
         ")\r\n";
}

std::string FailedQuery(const std::string& when, const std::string& command) {
  const std::string begin = when + "\t";
  return begin + "100\tBeginning Query()... (command: " + command + ")\r\n" + begin +
         "102\tIEEE: ** ReadLine() Error info: Source- S  Description- D **\r\n" + begin +
         "103\tExiting Query()...(command: " + command + ")\r\n";
}

class LogCommandTest : public CommandFixture {
 protected:
  LogCommandTest() {
    std::string pattern = (fs::temp_directory_path() / "kesp-log.XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    options_.file = (folder_ / "trace \xC3\xA9.log").string();
  }
  ~LogCommandTest() override { fs::remove_all(folder_); }

  void Append(const std::string& text) { std::ofstream(options_.file, std::ios::app) << text; }

  int RunIt() { return Run(options_); }

  fs::path folder_;
  LogOptions options_;
};

TEST_F(LogCommandTest, Trace_IsATable) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4") + FailedQuery("11/22/2026 1:16:08 AM", "U?"));
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(
      console_.output,
      std::string(kHead) +
          "11/22/2026 1:16:07 AM         7  gpib                    T?                  21.4\n"
          "11/22/2026 1:16:08 AM         3                          U?                  FAILED: D (S)\n");
  EXPECT_EQ(console_.error, "");
}

TEST_F(LogCommandTest, Errors_ShowsOnlyWhatFailed) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4") + FailedQuery("11/22/2026 1:16:08 AM", "U?"));
  options_.errors = true;
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.output.find("T?"), std::string::npos);
  EXPECT_NE(console_.output.find("U?"), std::string::npos);
}

TEST_F(LogCommandTest, Csv_HasAHeadAndLinesOfItsOwn) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.csv = true;
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.output,
            "when,counter,ms,kind,place,command,reply,failure,source\r\n"
            "11/22/2026 1:16:07 AM,100,7,query,gpib,T?,21.4,,\r\n");
}

TEST_F(LogCommandTest, Since_LeavesOutWhatBeganBefore) {
  Append(Query("22.11.2026 01:16:07", "A?", "1") + Query("22.11.2026 13:16:07", "B?", "2") +
         Query("22.11.2026 14:00:00", "C?", "3"));
  const std::pair<const char*, const char*> cases[] = {{"13:16:07", "BC"},    {"14:00", "C"},
                                                       {"10min", "C"},        {"1h", "BC"},
                                                       {"2026-11-22", "ABC"}, {"2026-11-23", ""}};
  for (const auto& [since, shown] : cases) {
    console_.output.clear();
    options_.since = since;
    EXPECT_EQ(RunIt(), kExitDone);
    for (const char* name : {"A", "B", "C"}) {
      EXPECT_EQ(console_.output.find(std::string(name) + "?") != std::string::npos,
                std::string(shown).find(name) != std::string::npos)
          << since << " " << name;
    }
  }
  EXPECT_EQ(console_.error, "");
}

TEST_F(LogCommandTest, Since_SaysWhereTheDatesAreNotClear) {
  Append(Query("01/11/2026 01:16:07", "A?", "1"));
  options_.since = "2026-01-01";
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.error,
            "kesp: the trace does not tell whether its dates have the day or the month first; taken for: the "
            "month\n");
}

TEST_F(LogCommandTest, Since_ThatIsNoTime_IsAMistake) {
  Append(Query("22.11.2026 01:16:07", "A?", "1"));
  options_.since = "noon";
  EXPECT_EQ(RunIt(), kExitUsage);
  EXPECT_EQ(console_.error,
            "kesp: --since: \"noon\" is no time; 14:05, \"2026-11-22 14:05:09\" or 10min was expected\n");
}

TEST_F(LogCommandTest, NoFile_AndNoTrace_AreRefused) {
  EXPECT_EQ(RunIt(), kExitFailed);
  Append("{\n}\n");
  EXPECT_EQ(RunIt(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: " + options_.file + " is not there\nkesp: " + options_.file +
                                " holds no line of a trace of the library\n");
}

TEST_F(LogCommandTest, Folder_IsNoTrace) {
  options_.file = folder_.string();
  EXPECT_EQ(RunIt(), kExitFailed);
  EXPECT_EQ(console_.error, "kesp: " + options_.file + " is a folder\n");
}

TEST_F(LogCommandTest, Follow_WaitsForAFileThatIsNotThereYet) {
  options_.follow = true;
  clock_.on_sleep = [&] {
    if (clock_.sleeps.size() == 2) Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
    if (clock_.sleeps.size() == 4) console_.Interrupt();
  };
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_NE(console_.output.find("21.4\n"), std::string::npos);
  EXPECT_EQ(console_.error, "kesp: " + options_.file + " is not there yet; waiting for it\n");
}

TEST_F(LogCommandTest, Follow_CtrlCEndsTheWaitingForAFile) {
  options_.follow = true;
  clock_.on_sleep = [&] { console_.Interrupt(); };
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.output, "");
}

TEST_F(LogCommandTest, FileThatGoesAfterItsSizeWasAsked_IsAtItsEnd) {
  EXPECT_EQ(FileOnDisk(options_.file).Read(0, 10), "");
}

TEST_F(LogCommandTest, EmptyFile_HasNoExchanges) {
  Append("");
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.output, kHead);
}

TEST_F(LogCommandTest, Follow_ShowsWhatIsAppended_UntilCtrlC) {
  const std::string second = Query("11/22/2026 1:16:08 AM", "U?", "2");
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.follow = true;
  std::vector<std::string> seen;
  clock_.on_sleep = [&] {
    seen.push_back(console_.output);
    switch (seen.size()) {
      case 1:
        return Append(second.substr(0, second.size() / 2));
      case 2:
        return Append(second.substr(second.size() / 2));
      case 3:
        return console_.Interrupt();
      default:
        FAIL() << "goes on after Ctrl-C";
    }
  };
  EXPECT_EQ(RunIt(), kExitDone);
  ASSERT_EQ(seen.size(), 3U);
  EXPECT_NE(seen[0].find("21.4\n"), std::string::npos);
  EXPECT_EQ(seen[1], seen[0]);
  EXPECT_NE(seen[2].find("U?                  2\n"), std::string::npos);
  EXPECT_EQ(console_.output, seen[2]);
}

TEST_F(LogCommandTest, Follow_NoticesAFileThatIsCut_Renamed_AndReplaced) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.follow = true;
  int sleeps = 0;
  clock_.on_sleep = [&] {
    switch (++sleeps) {
      case 1:  // cut, and begun anew
        std::ofstream(options_.file, std::ios::trunc);
        return Append(Query("11/22/2026 1:16:08 AM", "U?", "2"));
      case 2:  // as the library does at midnight
        return fs::rename(options_.file, options_.file + " 2026-11-22");
      case 3:  // longer than the one before
        return Append(Query("11/23/2026 0:00:01 AM", "V?", "3") + Query("11/23/2026 0:00:01 AM", "W?", "4"));
      default:
        return console_.Interrupt();
    }
  };
  EXPECT_EQ(RunIt(), kExitDone);
  for (const char* command : {"T?", "U?", "V?", "W?"}) {
    const std::size_t place = console_.output.find(command);
    ASSERT_NE(place, std::string::npos) << command;
    EXPECT_EQ(console_.output.find(command, place + 1), std::string::npos) << command;
  }
  const std::string note =
      "kesp: " + options_.file + " was cut or is another file now; from its beginning:\n";
  EXPECT_EQ(console_.error, note + note);
}

TEST_F(LogCommandTest, LongFile_ShowsProgress_AndEndsOnCtrlC) {
  const std::string query = Query("11/22/2026 1:16:07 AM", "T?", std::string(400, '1'));
  std::string text;
  while (text.size() < 9U << 20U) text += query;
  Append(text);
  options_.errors = true;
  EXPECT_EQ(RunIt(), kExitDone);
  ASSERT_GE(console_.progress.size(), 9U);
  EXPECT_EQ(console_.progress[3], "reading " + options_.file + ": 33 %");
  EXPECT_EQ(console_.progress.back(), "");
  console_.InterruptAfter(3);
  EXPECT_EQ(RunIt(), kExitInterrupted);
}

TEST_F(LogCommandTest, AsDevice_WritesANewFileAndSaysOfWhat) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.as_device = (folder_ / "device.json").string();
  EXPECT_EQ(RunIt(), kExitDone);
  EXPECT_EQ(console_.output, options_.as_device + ": 1 command of gpib, from 1 exchange\n");
  EXPECT_NE(console_.error.find("primary address"), std::string::npos);
  std::ifstream file(options_.as_device);
  std::stringstream content;
  content << file.rdbuf();
  EXPECT_NE(content.str().find("\"T?\""), std::string::npos);
  EXPECT_EQ(RunIt(), kExitFailed) << "the file is there now";
}

TEST_F(LogCommandTest, AsDevice_ThatCannotBeMade_LeavesNothing) {
  Append(FailedQuery("11/22/2026 1:16:08 AM", "U?"));
  options_.as_device = (folder_ / "device.json").string();
  EXPECT_EQ(RunIt(), kExitFailed);
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.as_device = (folder_ / "no such folder" / "device.json").string();
  EXPECT_EQ(RunIt(), kExitFailed);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

// For as long as this lives, no file can grow past so many bytes, as on a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST_F(LogCommandTest, AsDevice_WhenTheDiskIsFull_LeavesNothing) {
  Append(Query("11/22/2026 1:16:07 AM", "T?", "21.4"));
  options_.as_device = (folder_ / "device.json").string();
  const FullDisk full(100);
  EXPECT_EQ(RunIt(), kExitFailed);
  EXPECT_NE(console_.error.find("device.json cannot be written: "), std::string::npos) << console_.error;
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(LogCommandTest, AsDevice_WithErrorsOrCsv_IsAMistake) {
  options_.as_device = "x";
  options_.csv = true;
  EXPECT_EQ(RunIt(), kExitUsage);
}

}  // namespace
}  // namespace kesp::console
