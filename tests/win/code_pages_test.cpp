// Tests of texts in the system's code page. They run twice: in a Windows whose characters have one byte, and
// in a Japanese one, where they have up to two.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/ansi_text.h"
#include "support/code_page_win.h"
#include "support/environment_win.h"
#include "support/log.h"
#include "support/text.h"

namespace kesp {
namespace {

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

bool IsSingleByte() {
  CPINFO info{};
  GetCPInfo(CP_ACP, &info);
  return info.MaxCharSize == 1;
}

// That a test in Japanese is one.
TEST(SystemCodePageTest, StartedInALanguage_HasItsCodePage) {
  const char* locale = std::getenv("LC_ALL");
  if (locale == nullptr) GTEST_SKIP() << "this system does not take its language from there";
  EXPECT_EQ(GetACP(), std::string(locale).starts_with("ja_JP") ? 932U : 1252U) << locale;
}

TEST(SystemCodePageTest, AllBytes_ComeBackUnchanged) {
  const std::wstring text = SystemCodePage().FromBytes(AllBytes());
  EXPECT_EQ(SystemCodePage().ToBytes(text), AllBytes());
}

TEST(SystemCodePageTest, SystemsPageIsSingleByte_AgreesWithTheSystem) {
  if (!IsSingleByte()) GTEST_SKIP() << "code page " << GetACP();
  int defined = 0;
  for (const char byte : AllBytes()) {
    wchar_t character = 0;
    if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, &byte, 1, &character, 1) != 1) continue;
    ++defined;
    EXPECT_EQ(SystemCodePage().FromBytes(std::string(1, byte)), std::wstring(1, character));
  }
  EXPECT_GE(defined, 128);
}

TEST(SystemCodePageTest, SystemsPageIsNotSingleByte_IsWindows1252) {
  if (IsSingleByte()) GTEST_SKIP() << "code page " << GetACP();
  EXPECT_EQ(&SystemCodePage(), &Windows1252());
}

TEST(SystemCodePageTest, SurrogatePair_IsOneQuestionMark) {
  EXPECT_EQ(SystemCodePage().ToBytes(L"a\U0001F600b"), "a?b");
}

TEST(AnsiTextTest, TextOfAllBytes_BecomesTheSameBytesOnASingleBytePage) {
  if (!IsSingleByte()) GTEST_SKIP() << "code page " << GetACP();
  const std::wstring text = SystemCodePage().FromBytes(AllBytes());
  EXPECT_EQ(ToAnsi(text), AllBytes());
  // Also beside a character that has no byte at all.
  if (GetACP() == 1252) {
    EXPECT_EQ(ToAnsi(text + L"\u4E2D"), AllBytes() + "?");
  }
}

// In a Japanese Windows these are two bytes for each of the two Chinese characters.
TEST(AnsiTextTest, LinesOfALog_AreWhatTheSystemMakesOfTheText) {
  const std::filesystem::path path = SystemEnvironment().files.TemporaryFolder() + L"kesp_ansi_text_test.log";
  std::filesystem::remove(path);
  const std::wstring message = L"20 \u00B0C \u6E29\u5EA6";
  LogWriter(SystemEnvironment().clock, SystemEnvironment().files).Write(path.wstring(), message);
  std::ifstream file(path, std::ios::binary);
  const std::string line{std::istreambuf_iterator<char>(file), {}};
  file.close();
  std::filesystem::remove(path);
  EXPECT_TRUE(line.ends_with("\t" + ToCodePage(GetACP(), message) + "\r\n")) << line;
}

TEST(AnsiTextTest, SeveralBytesACharacter_AreWrittenWhole) {
  const std::wstring text{L'2', L'5', L'\u6E29', L'\u5EA6', L'\0', L'\r', L'\n'};
  EXPECT_EQ(ToCodePage(932, text), std::string("25\x89\xB7\x93x\0\r\n", 9));
  EXPECT_EQ(ToCodePage(CP_UTF8, text), std::string("25\xE6\xB8\xA9\xE5\xBA\xA6\0\r\n", 11));
  EXPECT_EQ(ToCodePage(932, L"\u0416\U0001F600"), "\x84G??");
  EXPECT_EQ(ToCodePage(1252, L"\u0101\u6E29"), "a?");
}

}  // namespace
}  // namespace kesp
