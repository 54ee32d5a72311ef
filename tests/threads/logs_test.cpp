// Objects on threads of their own that write one log, also while it rolls over to a new day.
#include <gtest/gtest.h>
#include <time.h>

#include <cstdio>
#include <map>
#include <string>

#include "support/clock_fake.h"
#include "support/diagnostic_log.h"
#include "support/log.h"
#include "tests/threads/disk_files.h"
#include "tests/threads/together.h"

namespace kesp::threads {
namespace {

constexpr int kThreads = 4;
constexpr wchar_t kLog[] = L"one.log";

CalendarDate TodayOfTheSystem() {
  const time_t now = time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

std::wstring Message(int thread, int line) {
  return L"thread " + std::to_wstring(thread) + L" line " + std::to_wstring(line) + L" \u20AC";
}

// How often each message is there. A line that is not whole fails the test.
std::map<std::string, int> MessagesIn(const std::string& content) {
  const std::string head = "17/05/2024 12:34:56\t1000000\t";
  std::map<std::string, int> messages;
  std::size_t begin = 0;
  for (std::size_t end = 0; (end = content.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    const std::string line = content.substr(begin, end - begin);
    EXPECT_TRUE(line.starts_with(head)) << line;
    if (line.starts_with(head)) ++messages[line.substr(head.size())];
  }
  EXPECT_EQ(begin, content.size());
  return messages;
}

class LogThreadsTest : public testing::Test {
 protected:
  // Each message once, and no other.
  static void ExpectAll(const std::map<std::string, int>& messages, int lines) {
    EXPECT_EQ(messages.size(), static_cast<std::size_t>(kThreads * lines));
    for (const auto& [message, count] : messages) EXPECT_EQ(count, 1) << message;
  }

  DiskFiles files_;
};

TEST_F(LogThreadsTest, ObjectsOfTwoThreadsWriteOneLog_EachLineIsThereOnceAndWhole) {
  const int lines = Rounds(200);
  RunTogether(kThreads, [&](int number) {
    ClockFake clock;
    DiagnosticLog log(clock, files_, kLog);
    log.Turn(true);
    for (int line = 0; line < lines; ++line) log.Write([&] { return Message(number, line); });
  });
  ExpectAll(MessagesIn(files_.Content(kLog)), lines);
}

// The first lines find yesterday's log: one of the threads renames it, and no line is lost whoever that is.
TEST_F(LogThreadsTest, LogOfYesterday_RollsOverOnceAndLosesNoLine) {
  for (int round = 0; round < Rounds(20); ++round) {
    const std::wstring name = L"day " + std::to_wstring(round);
    const CalendarDate yesterday = files_.PutYesterday(name, "old\r\n");
    RunTogether(kThreads, [&](int number) {
      ClockFake clock;
      clock.SetToday(TodayOfTheSystem());
      LogWriter log(clock, files_);
      for (int line = 0; line < 5; ++line) log.WriteWithDailyRollover(name, Message(number, line));
    });
    char date[40];
    std::snprintf(date, sizeof date, " %04d-%02d-%02d", yesterday.year, yesterday.month, yesterday.day);
    const std::string text = date;
    const std::string rolled = files_.Content(name + std::wstring(text.begin(), text.end()));
    ASSERT_TRUE(rolled.starts_with("old\r\n"));
    // A thread that opened the file before it was renamed writes behind the old lines.
    ExpectAll(MessagesIn(rolled.substr(5) + files_.Content(name)), 5);
  }
}

}  // namespace
}  // namespace kesp::threads
