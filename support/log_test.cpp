// Tests of the lines of a log and of its rollover from day to day.
#include "support/log.h"

#include <gtest/gtest.h>

#include <new>

#include "support/clock_fake.h"
#include "support/files_fake.h"

namespace kesp {
namespace {

constexpr CalendarDate kYesterday{2013, 1, 10};
constexpr CalendarDate kToday{2013, 1, 11};
const std::wstring kPath = L"C:\\Logs\\commobjout.log";
const std::wstring kRolledPath = L"C:\\Logs\\commobjout.log 2013-01-10";

class LogWriterTest : public testing::Test {
 protected:
  LogWriterTest() {
    clock.SetToday(kToday);
    clock.SetTickCount(123456);
    clock.SetDateTimeText(L"11/01/2013 08:09:10");
  }

  ClockFake clock;
  FilesFake files{clock};
  LogWriter log{clock, files};
};

TEST_F(LogWriterTest, Write_NoFile_MakesItWithOneLine) {
  log.Write(kPath, L"Beginning Query()...");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t123456\tBeginning Query()...\r\n");
}

TEST_F(LogWriterTest, Write_FileIsThere_Appends) {
  log.Write(kPath, L"first");
  clock.Advance(1000);
  clock.SetDateTimeText(L"11/01/2013 08:09:11");
  log.Write(kPath, L"second");
  EXPECT_EQ(files.Content(kPath),
            "11/01/2013 08:09:10\t123456\tfirst\r\n11/01/2013 08:09:11\t124456\tsecond\r\n");
}

TEST_F(LogWriterTest, Write_EmptyMessage_StillMakesALine) {
  log.Write(kPath, L"");
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t123456\t\r\n");
}

TEST_F(LogWriterTest, Write_TickCountIsNegative_IsSigned) {
  clock.SetTickCount(-5);
  log.Write(kPath, L"x");
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t-5\tx\r\n");
}

TEST_F(LogWriterTest, Write_CharactersOutsideAscii_AreInTheCodePageOrQuestionMarks) {
  log.Write(kPath, L"20 \u00B0C \u20AC \u0416 \U0001F600");
  EXPECT_EQ(files.Content(kPath),
            "11/01/2013 08:09:10\t123456\t20 \xB0"
            "C \x80 ? ?\r\n");
}

TEST_F(LogWriterTest, Write_EmbeddedNul_IsKept) {
  log.Write(kPath, std::wstring{L'a', L'\0', L'b'});
  EXPECT_EQ(files.Content(kPath), std::string("11/01/2013 08:09:10\t123456\ta\0b\r\n", 32));
}

TEST_F(LogWriterTest, Write_BareName_IsHandedOnAsItIs) {
  log.Write(L"CKespTCP.log", L"x");
  EXPECT_TRUE(files.files().contains(L"CKespTCP.log"));
}

TEST_F(LogWriterTest, Write_OldFile_DoesNotRollOver) {
  files.Put(kPath, "old\r\n", kYesterday);
  log.Write(kPath, L"x");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "old\r\n11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Write_CannotAppend_LosesTheLineSilently) {
  files.Refuse(FilesFake::Operation::kAppend);
  log.Write(kPath, L"x");
  EXPECT_EQ(files.calls(), 1);
  EXPECT_TRUE(files.files().empty());
}

TEST_F(LogWriterTest, Rollover_NoFile_RenamesNothing) {
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Rollover_FileOfYesterday_GetsItsDateAndTheLineStartsANewFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.files().size(), 2U);
  EXPECT_EQ(files.Content(kRolledPath), "old\r\n");
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Rollover_FileOfToday_IsAppendedTo) {
  files.Put(kPath, "old\r\n", kToday);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "old\r\n11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Rollover_SecondLineOfTheDay_IsAppendedToTheNewFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  log.WriteWithDailyRollover(kPath, L"x");
  log.WriteWithDailyRollover(kPath, L"y");
  EXPECT_EQ(files.Content(kPath), "11/01/2013 08:09:10\t123456\tx\r\n11/01/2013 08:09:10\t123456\ty\r\n");
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

TEST_F(LogWriterTest, Rollover_BareName_StaysInTheCurrentDirectory) {
  files.Put(L"out.log", "old", kYesterday);
  log.WriteWithDailyRollover(L"out.log", L"x");
  EXPECT_EQ(files.Content(L"out.log 2013-01-10"), "old");
}

TEST_F(LogWriterTest, Rollover_TargetExists_AppendsToTheOldFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  files.Put(kRolledPath, "older", kYesterday);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.Content(kRolledPath), "older");
  EXPECT_EQ(files.Content(kPath), "old\r\n11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Rollover_CannotRename_AppendsToTheOldFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  files.Refuse(FilesFake::Operation::kRename);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "old\r\n11/01/2013 08:09:10\t123456\tx\r\n");
}

TEST_F(LogWriterTest, Rollover_DateCannotBeTold_AppendsToTheOldFile) {
  files.Put(kPath, "old\r\n", kYesterday);
  files.Refuse(FilesFake::Operation::kLastModified);
  log.WriteWithDailyRollover(kPath, L"x");
  EXPECT_EQ(files.files().size(), 1U);
  EXPECT_EQ(files.Content(kPath), "old\r\n11/01/2013 08:09:10\t123456\tx\r\n");
}

// Whichever call runs out of memory: nothing reaches the caller, and the old lines are all there.
TEST_F(LogWriterTest, Rollover_NthCallThrows_NothingEscapesAndNothingOldIsLost) {
  for (int n = 1; n <= 4; ++n) {
    FilesFake disk(clock);
    disk.Put(kPath, "old\r\n", kYesterday);
    disk.ThrowAtCall(n);
    LogWriter(clock, disk).WriteWithDailyRollover(kPath, L"x");
    const std::string everything = disk.Content(kRolledPath) + disk.Content(kPath);
    EXPECT_EQ(everything.find("old\r\n"), 0U) << n;
    // Only the append itself (the third call of three) loses the line.
    EXPECT_EQ(everything.find("\tx\r\n") == std::string::npos, n == 3) << n;
  }
}

// A clock without memory.
class ClockWithoutMemory final : public Clock {
 public:
  std::int32_t TickCount() override { return 0; }
  std::int64_t Microseconds() override { return 0; }
  int MillisecondOfSecond() override { return 0; }
  CalendarDate Today() override { return {}; }
  std::wstring DateTimeText() override { throw std::bad_alloc(); }
};

TEST_F(LogWriterTest, Write_ClockThrows_LosesTheLineSilently) {
  ClockWithoutMemory broken;
  LogWriter(broken, files).Write(kPath, L"x");
  EXPECT_EQ(files.calls(), 0);
}

}  // namespace
}  // namespace kesp
