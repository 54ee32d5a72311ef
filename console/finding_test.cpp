// Findings as a page and as JSON.
#include "console/finding.h"

#include <gtest/gtest.h>

#include "console/finding_text.h"

namespace kesp::console {
namespace {

Findings Three() {
  return {Well("Windows", "Windows 11"), Warning("Office", "16.0", "register it"),
          Fault("GPIB", "\"quoted\" C:\\a", "install it")};
}

TEST(PageOf, EachFinding_HasALineAndOneForItsRemedy) {
  EXPECT_EQ(PageOf(Three()), "kesp " KESP_VERSION
                             " doctor\n\n"
                             "OK    Windows  Windows 11\n"
                             "WARN  Office   16.0\n"
                             "               -> register it\n"
                             "FAIL  GPIB     \"quoted\" C:\\a\n"
                             "               -> install it\n"
                             "\n"
                             "1 OK, 1 WARN, 1 FAIL\n");
}

TEST(FindingsOf, WhatJsonOfWrote_IsReadAgain) {
  EXPECT_EQ(FindingsOf(JsonOf(Three())), Three());
  EXPECT_EQ(FindingsOf(JsonOf({})), Findings());
}

TEST(FindingsOf, AnotherText_GivesNothing) {
  for (const char* text :
       {"", "kesp: no", "{}", R"({"findings": [{"level": "BAD", "subject": "", "text": ""}]})",
        R"({"findings": [{"level": "OK"}]})"})
    EXPECT_EQ(FindingsOf(text), std::nullopt) << text;
}

TEST(HideUser, FolderOfTheUser_IsNamedByItsVariable) {
  Findings findings = {Warning("a", R"(C:\Users\Jo\x.dll, C:\Users\Jo\y.dll, C:\Users\Joe\z.dll)",
                               R"(regsvr32 "C:\Users\Jo\x.dll")")};
  HideUser(findings, {R"(C:\Users\Jo)"});
  EXPECT_EQ(findings[0].text, R"(%USERPROFILE%\x.dll, %USERPROFILE%\y.dll, C:\Users\Joe\z.dll)");
  EXPECT_EQ(findings[0].remedy, R"(regsvr32 "C:\Users\Jo\x.dll")") << "another account has another folder";
  const Findings before = findings;
  HideUser(findings, {});
  EXPECT_EQ(findings, before);
}

TEST(HideUser, AnyCase_AndTheShortName) {
  Findings findings = {Well("a", R"(c:\users\JOHANNES\x.dll, C:\Users\JOHANN~1\y.dll)")};
  HideUser(findings, {R"(C:\Users\Johannes)", R"(C:\Users\JOHANN~1)"});
  EXPECT_EQ(findings[0].text, R"(%USERPROFILE%\x.dll, %USERPROFILE%\y.dll)");
}

}  // namespace
}  // namespace kesp::console
