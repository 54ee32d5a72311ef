// Tests of the clock, the source of GUIDs, the system's code page and the environment on the system itself.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "support/ansi_text.h"
#include "support/clock_win.h"
#include "support/code_page_win.h"
#include "support/environment_win.h"
#include "support/guid_source_win.h"
#include "support/log.h"
#include "support/object_key.h"
#include "support/text.h"
#include "support/timing.h"

namespace kesp {
namespace {

TEST(ClockWin, TickCount_IsTheSystemsCounter) {
  const DWORD before = GetTickCount();
  const auto reading = static_cast<DWORD>(ClockWin().TickCount());
  EXPECT_LE(reading - before, GetTickCount() - before);
}

TEST(ClockWin, Microseconds_AgreeWithTheSystemsCounter) {
  ClockWin clock;
  const std::int64_t first = clock.Microseconds();
  const DWORD start = GetTickCount();
  Sleep(100);
  const std::int64_t elapsed = clock.Microseconds() - first;
  EXPECT_GE(elapsed, 100'000);
  // The tick counter steps by up to 16 ms.
  EXPECT_LE(elapsed / 1000, std::int64_t{GetTickCount() - start} + 20);
}

TEST(ClockWin, MillisecondOfSecond_StaysInRangeAndMoves) {
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

TEST(ClockWin, Today_IsTheLocalDate) {
  SYSTEMTIME before{};
  GetLocalTime(&before);
  const CalendarDate today = ClockWin().Today();
  SYSTEMTIME after{};
  GetLocalTime(&after);
  EXPECT_TRUE((today == CalendarDate{before.wYear, before.wMonth, before.wDay}) ||
              (today == CalendarDate{after.wYear, after.wMonth, after.wDay}));
}

TEST(ClockWin, DateTimeText_HoldsDateAndTimeOnOneLine) {
  const std::wstring text = ClockWin().DateTimeText();
  const std::size_t blank = text.find(L' ');
  ASSERT_NE(blank, std::wstring::npos) << testing::PrintToString(text);
  EXPECT_GT(blank, 0U);
  EXPECT_LT(blank, text.size() - 1);
  EXPECT_EQ(text.find_first_of(L"\t\r\n"), std::wstring::npos);
  EXPECT_NE(text.find_first_of(L"0123456789"), std::wstring::npos);
}

TEST(Delay, RealClockAndPump_TakesAtLeastTheTime) {
  Environment& system = SystemEnvironment();
  const DWORD start = GetTickCount();
  Delay(system.clock, system.pump, 50);
  EXPECT_GE(GetTickCount() - start, 50U);
}

TEST(GuidSourceWin, MadeTwice_Differs) {
  GuidSourceWin source;
  const std::wstring first = NewGuidText(source);
  EXPECT_EQ(first.size(), 32U);
  EXPECT_NE(NewGuidText(source), first);
}

TEST(GuidSourceWin, ThreadWithoutApartment_MakesAKey) {
  std::wstring key;
  std::thread([&] {
    GuidSourceWin source;
    key = NewObjectKey(source);
  }).join();
  EXPECT_EQ(key.size(), 11U);
  EXPECT_EQ(key.back(), L'K');
}

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

TEST(SystemCodePage, AllBytes_ComeBackUnchanged) {
  RecordProperty("code_page", static_cast<int>(GetACP()));
  const std::wstring text = SystemCodePage().FromBytes(AllBytes());
  EXPECT_EQ(SystemCodePage().ToBytes(text), AllBytes());
}

TEST(SystemCodePage, SystemsPageIsSingleByte_AgreesWithTheSystem) {
  CPINFO info{};
  GetCPInfo(CP_ACP, &info);
  if (info.MaxCharSize != 1)
    GTEST_SKIP() << "the system's code page " << GetACP() << " is not a single-byte one";
  int defined = 0;
  for (const char byte : AllBytes()) {
    wchar_t character = 0;
    if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &byte, 1, &character, 1) != 1) continue;
    ++defined;
    EXPECT_EQ(SystemCodePage().FromBytes(std::string(1, byte)), std::wstring(1, character));
  }
  EXPECT_GE(defined, 128);
}

TEST(SystemCodePage, SystemsPageIsNotSingleByte_IsWindows1252) {
  CPINFO info{};
  GetCPInfo(CP_ACP, &info);
  if (info.MaxCharSize == 1) GTEST_SKIP() << "the system's code page " << GetACP() << " is a single-byte one";
  EXPECT_EQ(&SystemCodePage(), &Windows1252());
}

TEST(SystemCodePage, SurrogatePair_IsOneQuestionMark) {
  EXPECT_EQ(SystemCodePage().ToBytes(L"a\U0001F600b"), "a?b");
}

TEST(AnsiText, TextOfAllBytes_BecomesTheSameBytesOnASingleBytePage) {
  CPINFO info{};
  GetCPInfo(CP_ACP, &info);
  if (info.MaxCharSize != 1)
    GTEST_SKIP() << "the system's code page " << GetACP() << " is not a single-byte one";
  const std::wstring text = SystemCodePage().FromBytes(AllBytes());
  EXPECT_EQ(ToAnsi(text), AllBytes());
  // Also beside a character that has no byte at all.
  if (GetACP() == 1252) {
    EXPECT_EQ(ToAnsi(text + L"\u4E2D"), AllBytes() + "?");
  }
}

// To be run in a Windows whose characters have several bytes.
TEST(AnsiTextOfSeveralBytes, PageHasThem) {
  CPINFO info{};
  GetCPInfo(CP_ACP, &info);
  EXPECT_GT(info.MaxCharSize, 1U) << "code page " << GetACP();
}

// In a Japanese Windows these are two bytes for each of the two Chinese characters.
TEST(AnsiText, LinesOfALog_AreWhatTheSystemMakesOfTheText) {
  const std::wstring path = SystemEnvironment().files.TemporaryFolder() + L"kesp_ansi_text_test.log";
  DeleteFileW(path.c_str());
  const std::wstring message = L"20 \u00B0C \u6E29\u5EA6";
  LogWriter(SystemEnvironment().clock, SystemEnvironment().files).Write(path, message);
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  const std::string line{std::istreambuf_iterator<char>(file), {}};
  file.close();
  DeleteFileW(path.c_str());
  EXPECT_TRUE(line.ends_with("\t" + ToCodePage(GetACP(), message) + "\r\n")) << line;
}

TEST(CodePages, SeveralBytesACharacter_AreWrittenWhole) {
  const std::wstring text{L'2', L'5', L'\u6E29', L'\u5EA6', L'\0', L'\r', L'\n'};
  EXPECT_EQ(ToCodePage(932, text), std::string("25\x89\xB7\x93x\0\r\n", 9));
  EXPECT_EQ(ToCodePage(CP_UTF8, text), std::string("25\xE6\xB8\xA9\xE5\xBA\xA6\0\r\n", 11));
  EXPECT_EQ(ToCodePage(932, L"\u0416\U0001F600"), "\x84G??");
  EXPECT_EQ(ToCodePage(1252, L"\u0101\u6E29"), "a?");
}

TEST(SystemEnvironment, AskedTwice_IsTheSame) {
  EXPECT_EQ(&SystemEnvironment(), &SystemEnvironment());
}

}  // namespace
}  // namespace kesp
