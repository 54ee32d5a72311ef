// Tests of typing into the TCP/IP form: the dots of an address, the keys, and the focus.
#include <gtest/gtest.h>

#include "dialogs/frm_tcp_settings_fixture.h"

namespace kesp {
namespace {

using frmTCPSettingsTypingTest = frmTCPSettingsFixture;

TEST_F(frmTCPSettingsTypingTest, Dot_MovesTheFocusAndIsDropped) {
  Load();
  view_.lines.clear();
  for (TextBox& box : form_->txtIP) EXPECT_EQ(form_->KeyPress(box, L'.'), 0);
  EXPECT_EQ(view_.lines, (Lines{L"414 focused", L"415 focused", L"416 focused", L"413 focused"}));
}

TEST_F(frmTCPSettingsTypingTest, DotInAnotherBox_IsOnlyDropped) {
  Load();
  view_.lines.clear();
  EXPECT_EQ(form_->KeyPress(form_->txtPort, L'.'), 0);
  EXPECT_EQ(form_->KeyPress(form_->txtTimeout, L'.'), 0);
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(frmTCPSettingsTypingTest, OtherKeys_AreFilteredAndMoveNothing) {
  Load();
  view_.lines.clear();
  for (TextBox* box : {&form_->txtIP[0], &form_->txtIP[3], &form_->txtPort, &form_->txtTimeout}) {
    EXPECT_EQ(form_->KeyPress(*box, L'5'), L'5');
    EXPECT_EQ(form_->KeyPress(*box, 22), 22);
    for (const char dropped : {'-', '+', ',', ' ', 'x'}) {
      EXPECT_EQ(form_->KeyPress(*box, dropped), 0) << dropped;
    }
  }
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(frmTCPSettingsTypingTest, LostFocus_BringsTheNumberIntoTheBoxsRange) {
  Load();
  const struct {
    TextBox& box;
    const wchar_t* typed;
    const wchar_t* shown;
  } rows[] = {
      {form_->txtIP[0], L"300", L"255"},    {form_->txtIP[1], L"256", L"255"},
      {form_->txtIP[2], L"", L"0"},         {form_->txtIP[3], L"255", L"255"},
      {form_->txtIP[3], L"-1", L"0"},       {form_->txtPort, L"0", L"1"},
      {form_->txtPort, L"", L"1"},          {form_->txtPort, L"65535", L"65535"},
      {form_->txtPort, L"65536", L"65535"}, {form_->txtTimeout, L"99", L"100"},
      {form_->txtTimeout, L"100", L"100"},  {form_->txtTimeout, L"10001", L"10000"},
  };
  for (const auto& row : rows) {
    row.box.Type(row.typed);
    form_->LostFocus(row.box);
    EXPECT_EQ(row.box.text(), row.shown) << row.box.id() << " " << row.typed;
  }
}

}  // namespace
}  // namespace kesp
