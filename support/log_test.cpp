// Tests of the lines of a log and of its rollover from day to day.
#include "support/log.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <utility>

#include "support/clock_fake.h"
#include "support/files_fake.h"

namespace kesp {
namespace {

constexpr CalendarDate kYesterday{2013, 1, 10};
constexpr CalendarDate kToday{2013, 1, 11};
const std::wstring kPath = L"C:\\Logs\\commobjout.log";
const std::wstring kRolledPath = L"C:\\Logs\\commobjout.log 2013-01-10";

// What every line begins with.
const std::string kTime = "11/01/2013 08:09:10\t123456\t";

class LogWriterTest : public testing::Test {
 protected:
  LogWriterTest() {
    clock.SetToday(kToday);
    clock.SetTickCount(123456);
    clock.SetDateTimeText(L"11/01/2013 08:09:10");
  }

  // The file's content when it is the only one.
  std::string OnlyContent() const {
    EXPECT_EQ(files.files().size(), 1U);
    return files.Content(kPath);
  }

  ClockFake clock;
  FilesFake files{clock};
  LogWriter log{clock, files};
};

TEST_F(LogWriterTest, Write_MakesTheFileThenAppends) {
  log.Write(kPath, L"first");
  EXPECT_EQ(OnlyContent(), kTime + "first\r\n");
  clock.Advance(1000);
  clock.SetDateTimeText(L"11/01/2013 08:09:11");
  log.Write(kPath, L"second");
  EXPECT_EQ(OnlyContent(), kTime + "first\r\n11/01/2013 08:09:11\t124456\tsecond\r\n");
}

TEST_F(LogWriterTest, Write_AnyMessage_IsALineInTheCodePage) {
  const std::pair<std::wstring, std::string> rows[] = {
      {L"", ""},
      {L"20 \u00B0C \u20AC \u0416 \U0001F600",
       "20 \xB0"
       "C \x80 ? ?"},
      {{L'a', L'\0', L'b'}, {'a', '\0', 'b'}},
  };
  std::string expected;
  for (const auto& [message, bytes] : rows) {
    log.Write(kPath, message);
    expected += kTime + bytes + "\r\n";
  }
  EXPECT_EQ(OnlyContent(), expected);
}

TEST_F(LogWriterTest, Write_TickCountIsNegative_IsSigned) {
  clock.SetTickCount(-5);
  log.Write(kPath, L"x");
  EXPECT_EQ(OnlyContent(), "11/01/2013 08:09:10\t-5\tx\r\n");
}

TEST_F(LogWriterTest, Write_OldFile_DoesNotRollOver) {
  files.Put(kPath, "old\r\n", kYesterday);
  log.Write(kPath, L"x");
  EXPECT_EQ(OnlyContent(), "old\r\n" + kTime + "x\r\n");
}

TEST_F(LogWriterTest, Write_CannotAppend_LosesTheLineSilently) {
  files.Refuse(FilesFake::Operation::kAppend);
  log.Write(kPath, L"x");
  EXPECT_EQ(files.faults.calls(), 1);
  EXPECT_TRUE(files.files().empty());
}

TEST_F(LogWriterTest, Rollover_NoFile_RenamesNothing) {
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(OnlyContent(), kTime + "x\r\n");
}

TEST_F(LogWriterTest, Rollover_FileOfYesterday_GetsItsDateAndTheLinesStartANewFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  log.WriteWithDailyRollover(kPath, L"x");
  log.WriteWithDailyRollover(kPath, L"y");
  EXPECT_EQ(files.files().size(), 2U);
  EXPECT_EQ(files.Content(kRolledPath), "old\r\n");
  EXPECT_EQ(files.Content(kPath), kTime + "x\r\n" + kTime + "y\r\n");
}

TEST_F(LogWriterTest, Rollover_AnyOtherDay_IsWrittenAsYearMonthDay) {
  struct Case {
    CalendarDate modified;
    const wchar_t* suffix;
  };
  const Case cases[] = {
      {{2012, 1, 11}, L" 2012-01-11"},   // the same day of another year
      {{2012, 12, 31}, L" 2012-12-31"},  // two digits each
      {{2013, 1, 12}, L" 2013-01-12"},   // a day ahead: the computer's clock was set back
      {{985, 2, 3}, L" 0985-02-03"},
  };
  for (const Case& c : cases) {
    FilesFake disk(clock);
    disk.Put(kPath, "old", c.modified);
    LogWriter(clock, disk).WriteWithDailyRollover(kPath, L"x");
    EXPECT_EQ(disk.Content(kPath + c.suffix), "old");
    EXPECT_EQ(disk.files().size(), 2U);
  }
}

// Of today, or one that cannot be renamed, or whose date cannot be told.
TEST_F(LogWriterTest, Rollover_FileThatStays_IsAppendedTo) {
  using Operation = FilesFake::Operation;
  const std::pair<CalendarDate, std::optional<Operation>> cases[] = {
      {kToday, {}}, {kYesterday, Operation::kRename}, {kYesterday, Operation::kLastModified}};
  for (const auto& [modified, refused] : cases) {
    FilesFake disk(clock);
    disk.Put(kPath, "old\r\n", modified);
    if (refused) disk.Refuse(*refused);
    LogWriter(clock, disk).WriteWithDailyRollover(kPath, L"x");
    EXPECT_EQ(disk.files().size(), 1U);
    EXPECT_EQ(disk.Content(kPath), "old\r\n" + kTime + "x\r\n");
  }
}

TEST_F(LogWriterTest, Rollover_TargetExists_AppendsToTheOldFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  files.Put(kRolledPath, "older", kYesterday);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.Content(kRolledPath), "older");
  EXPECT_EQ(files.Content(kPath), "old\r\n" + kTime + "x\r\n");
}

TEST_F(LogWriterTest, BareName_StaysInTheCurrentDirectory) {
  files.Put(L"out.log", "old", kYesterday);
  log.WriteWithDailyRollover(L"out.log", L"x");
  EXPECT_EQ(files.Content(L"out.log 2013-01-10"), "old");
  EXPECT_EQ(files.Content(L"out.log"), kTime + "x\r\n");
}

TEST_F(LogWriterTest, Write_ClockThrows_LosesTheLineSilently) {
  // A clock without memory.
  class : public ClockFake {
    std::wstring DateTimeText() override { throw std::bad_alloc(); }
  } broken;
  LogWriter(broken, files).Write(kPath, L"x");
  EXPECT_EQ(files.faults.calls(), 0);
}

}  // namespace
}  // namespace kesp
