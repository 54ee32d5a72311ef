// Tests of the clock, the source of GUIDs and the environment on the system itself.
#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "support/clock_win.h"
#include "support/environment_win.h"
#include "support/guid_source_win.h"
#include "support/object_key.h"
#include "support/timing.h"

namespace kesp {
namespace {

TEST(ClockWinTest, TickCount_IsTheSystemsCounter) {
  const DWORD before = GetTickCount();
  const auto reading = static_cast<DWORD>(ClockWin().TickCount());
  EXPECT_LE(reading - before, GetTickCount() - before);
}

TEST(ClockWinTest, Microseconds_AgreeWithTheSystemsCounter) {
  ClockWin clock;
  const std::int64_t first = clock.Microseconds();
  const DWORD start = GetTickCount();
  Sleep(100);
  const std::int64_t elapsed = clock.Microseconds() - first;
  EXPECT_GE(elapsed, 100'000);
  // The tick counter steps by up to 16 ms.
  EXPECT_LE(elapsed / 1000, std::int64_t{GetTickCount() - start} + 20);
}

TEST(ClockWinTest, MillisecondOfSecond_StaysInRangeAndMoves) {
  ClockWin clock;
  const int first = clock.MillisecondOfSecond();
  const DWORD start = GetTickCount();
  int reading = first;
  while (reading == first && GetTickCount() - start < 5000) {
    reading = clock.MillisecondOfSecond();
    ASSERT_GE(reading, 0);
    ASSERT_LE(reading, 999);
  }
  EXPECT_NE(reading, first);
}

CalendarDate LocalDate() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay};
}

TEST(ClockWinTest, Today_IsTheLocalDate) {
  const CalendarDate before = LocalDate();
  const CalendarDate today = ClockWin().Today();
  EXPECT_TRUE(today == before || today == LocalDate());
}

TEST(ClockWinTest, DateTimeText_HoldsDateAndTimeOnOneLine) {
  const std::wstring text = ClockWin().DateTimeText();
  const std::size_t blank = text.find(L' ');
  ASSERT_NE(blank, std::wstring::npos) << testing::PrintToString(text);
  EXPECT_GT(blank, 0U);
  EXPECT_LT(blank, text.size() - 1);
  EXPECT_EQ(text.find_first_of(L"\t\r\n"), std::wstring::npos);
  EXPECT_NE(text.find_first_of(L"0123456789"), std::wstring::npos);
}

TEST(DelayTest, RealClockAndPump_TakesAtLeastTheTime) {
  Environment& system = SystemEnvironment();
  const DWORD start = GetTickCount();
  Delay(system.clock, system.pump, 50);
  EXPECT_GE(GetTickCount() - start, 50U);
}

TEST(GuidSourceWinTest, MadeTwice_Differs) {
  GuidSourceWin source;
  const std::wstring first = NewGuidText(source);
  EXPECT_EQ(first.size(), 32U);
  EXPECT_NE(NewGuidText(source), first);
}

TEST(GuidSourceWinTest, ThreadWithoutApartment_MakesAKey) {
  std::wstring key;
  std::thread([&] {
    GuidSourceWin source;
    key = NewObjectKey(source);
  }).join();
  EXPECT_EQ(key.size(), 11U);
  EXPECT_EQ(key.back(), L'K');
}

TEST(SystemEnvironmentTest, AskedTwice_IsTheSame) {
  EXPECT_EQ(&SystemEnvironment(), &SystemEnvironment());
}

}  // namespace
}  // namespace kesp
