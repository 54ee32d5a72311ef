// Tests of trimming and of the removal of line ends.
#include "support/text_edit.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

struct Case {
  std::wstring text;
  std::wstring result;
};

TEST(TextEdit, Trim_TakesBlanksFromBothEndsOnly) {
  const Case cases[] = {
      {L"", L""},
      {L" ", L""},
      {L"   ", L""},
      {L"a", L"a"},
      {L"  a b  ", L"a b"},
      {L"a ", L"a"},
      {L" a", L"a"},
      {L"\ta\t", L"\ta\t"},
      {L" \r\n ", L"\r\n"},
      {L"\u00A0a\u00A0", L"\u00A0a\u00A0"},
      {std::wstring{L' ', L'\0', L' '}, std::wstring{L'\0'}},
  };
  for (const Case& c : cases) EXPECT_EQ(Trim(c.text), c.result);
}

TEST(TextEdit, StripLineEnds_MakesBlanksOfThemThenTrims) {
  const Case cases[] = {
      {L"", L""},
      {L"\r\n", L""},
      {L"A\rB\n", L"A B"},
      {L"A\r\nB", L"A  B"},
      {L"\n\r 1.5 \r\n", L"1.5"},
      {L"A\tB", L"A\tB"},
      {std::wstring{L'A', L'\0', L'\r'}, std::wstring{L'A', L'\0'}},
  };
  for (const Case& c : cases) EXPECT_EQ(StripLineEnds(c.text), c.result);
}

}  // namespace
}  // namespace kesp
