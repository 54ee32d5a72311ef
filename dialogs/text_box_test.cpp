// Tests of a number's box: its text, its value, and the focus that comes and goes.
#include "dialogs/text_box.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/form_view_fake.h"

namespace kesp {
namespace {

class TextBoxTest : public testing::Test {
 protected:
  TextBoxTest() { form_.SetView(&view_); }

  // What the box shows after the text was typed and the box left.
  static std::wstring Left(TextBox& box, const wchar_t* text) {
    box.Type(text);
    box.Leave();
    return box.text();
  }

  ControlOwner form_;
  FormViewFake view_;
  TextBox channel_{form_, 311, 0, KeyFilter::kDigits, NumberRange{12, 24}};
  TextBox unlimited_{form_, 218, 0, KeyFilter::kDigits};
};

TEST_F(TextBoxTest, Text_IsShownUnlessTheViewHasItAlready) {
  channel_.SetText(L"17x");
  EXPECT_EQ(channel_.text(), L"17x");
  EXPECT_EQ(channel_.Value(), 17);
  channel_.Type(L"300");
  EXPECT_EQ(channel_.text(), L"300");
  EXPECT_EQ(channel_.Value(), 300);
  EXPECT_EQ(view_.lines, Lines{L"311 text 17x"});
}

TEST_F(TextBoxTest, SelectAll_SelectsAllOfTheText) {
  channel_.Type(L"123");
  channel_.SelectAll();
  EXPECT_EQ(channel_.selection_start(), 0U);
  EXPECT_EQ(channel_.selection_length(), 3U);
  EXPECT_EQ(view_.lines, Lines{L"311 selected 0+3"});
}

TEST_F(TextBoxTest, Leave_BringsTheNumberIntoTheRange) {
  const struct {
    const wchar_t* typed;
    const wchar_t* shown;
  } rows[] = {
      {L"30", L"24"}, {L"", L"12"},      {L"7x", L"12"},     {L"x", L"12"},     {L"11", L"12"},
      {L"12", L"12"}, {L"24", L"24"},    {L"25", L"24"},     {L"018", L"18"},   {L" 18 ", L"18"},
      {L"-5", L"12"}, {L"1.5e1", L"15"}, {L"13.5", L"13.5"}, {L"1e999", L"24"}, {L"-1e999", L"12"},
  };
  for (const auto& row : rows) EXPECT_EQ(Left(channel_, row.typed), row.shown) << row.typed;
}

TEST_F(TextBoxTest, Leave_IsShownAlsoWhenNothingChanges) {
  Left(channel_, L"18");
  EXPECT_EQ(view_.lines, Lines{L"311 text 18"});
}

TEST_F(TextBoxTest, LeaveWithoutRange_KeepsTheText) {
  for (const wchar_t* text : {L"", L"70000", L"7x", L"-5", L"007"}) EXPECT_EQ(Left(unlimited_, text), text);
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(TextBoxTest, LeaveBesideArrows_TakesTheirRange) {
  UpDown arrows(form_, 421, 1, 100, 10000, 100);
  TextBox timeout(form_, 420, 1, KeyFilter::kSignedDecimal, arrows);
  EXPECT_EQ(timeout.filter(), KeyFilter::kSignedDecimal);
  EXPECT_EQ(Left(timeout, L"-5"), L"100");
  EXPECT_EQ(Left(timeout, L"99.9"), L"100");
  EXPECT_EQ(Left(timeout, L"100"), L"100");
  EXPECT_EQ(Left(timeout, L"2500"), L"2500");
  EXPECT_EQ(Left(timeout, L"20000"), L"10000");
}

}  // namespace
}  // namespace kesp
