// Tests of which viewer a help file is for.
#include "support/help_file.h"

#include <gtest/gtest.h>

#include "support/text.h"

namespace kesp {
namespace {

TEST(FormatOfHelpFile, Ending_DecidesInWhateverCase) {
  const struct {
    const wchar_t* path;
    HelpFormat format;
  } rows[] = {
      {L"C:\\lab\\lab.chm", HelpFormat::kHtmlHelp},
      {L"LAB.CHM", HelpFormat::kHtmlHelp},
      {L"lab.v2.cHm", HelpFormat::kHtmlHelp},
      {L".chm", HelpFormat::kHtmlHelp},
      {L"C:\\lab\\lab.hlp", HelpFormat::kWinHelp},
      {L"", HelpFormat::kWinHelp},
      {L"chm", HelpFormat::kWinHelp},
      {L"labchm", HelpFormat::kWinHelp},
      {L"C:\\lab.chm\\lab.hlp", HelpFormat::kWinHelp},
      {L"C:\\lab.chm\\lab", HelpFormat::kWinHelp},
      {L"lab.chm.hlp", HelpFormat::kWinHelp},
      {L"lab.chmx", HelpFormat::kWinHelp},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(FormatOfHelpFile(row.path), row.format) << SystemCodePage().ToBytes(row.path);
  }
}

}  // namespace
}  // namespace kesp
