// Tests of a form's pages, of the focus, and of typing into its boxes.
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "dialogs/form_fixture.h"
#include "support/failure.h"

namespace kesp {
namespace {

using FormFocusTest = FormFixture;

TEST_F(FormFocusTest, ChooseTab_ShowsItsFrameAlone) {
  form_.tabSettings.Choose(1);
  EXPECT_EQ(view_.lines, (Lines{L"100 selects Second", L"110 hidden", L"111 shown"}));
  view_.lines.clear();
  form_.tabSettings.Choose(0);
  EXPECT_EQ(view_.lines, (Lines{L"100 selects First", L"110 shown", L"111 hidden"}));
}

TEST_F(FormFocusTest, ChooseTabBehindARemovedOne_ShowsTheFrameOfItsTag) {
  FormForTest form(user_, {{L"First", 0}, {L"Second", 1}, {L"Third", 2}});
  form.tabSettings.Remove(1);
  form.tabSettings.Choose(1);
  EXPECT_FALSE(form.framSettings[0].visible());
  EXPECT_FALSE(form.framSettings[1].visible());
  EXPECT_TRUE(form.framSettings[2].visible());
}

TEST_F(FormFocusTest, Refuse_TellsTheUserThenShowsThePageThenGivesTheFocus) {
  EXPECT_FALSE(form_.Refuse(form_.txtSigned, L"Invalid Timeout", L"Enter a Timeout interval."));
  EXPECT_EQ(view_.lines, (Lines{L"box", L"100 selects Second", L"110 hidden", L"111 shown", L"502 focused"}));
  EXPECT_EQ(user_.TakeBoxes(), Boxes{Remark(L"Invalid Timeout", L"Enter a Timeout interval.")});
  EXPECT_EQ(form_.focused(), &form_.txtSigned);
  EXPECT_TRUE(form_.is_open());
  // And back again.
  view_.lines.clear();
  form_.Refuse(form_.txtDigits, L"A", L"B");
  EXPECT_EQ(view_.lines, (Lines{L"box", L"100 selects First", L"110 shown", L"111 hidden", L"501 focused"}));
}

TEST_F(FormFocusTest, RefuseOnAPageThatIsGone_StaysWhereItIs) {
  form_.tabSettings.Remove(1);
  form_.Refuse(form_.txtSigned, L"A", L"B");
  EXPECT_EQ(form_.tabSettings.selection(), 0U);
  EXPECT_TRUE(form_.framSettings[0].visible());
}

TEST_F(FormFocusTest, RefuseOnAPageBehindARemovedOne_ShowsThePageOfTheControl) {
  FormForTest form(user_, {{L"First", 0}, {L"Second", 1}, {L"Third", 2}});
  form.tabSettings.Remove(0);
  form.tabSettings.Choose(1);
  form.Refuse(form.txtSigned, L"A", L"B");
  EXPECT_EQ(form.tabSettings.selection(), 0U);
  EXPECT_TRUE(form.framSettings[1].visible());
  EXPECT_FALSE(form.framSettings[2].visible());
}

TEST_F(FormFocusTest, RefuseWhileTheFocusIsInABox_LeavesItUnlessItIsTheOneRefused) {
  form_.GotFocus(form_.txtDigits);
  form_.txtDigits.Type(L"5");
  form_.Refuse(form_.txtDigits, L"A", L"B");
  EXPECT_EQ(form_.txtDigits.text(), L"5");
  view_.lines.clear();
  form_.Refuse(form_.txtSigned, L"A", L"B");
  EXPECT_EQ(view_.lines, (Lines{L"box", L"501 text 12", L"100 selects Second", L"110 hidden", L"111 shown",
                                L"502 focused"}));
  // It was left, and is not left again.
  form_.txtDigits.Type(L"7");
  form_.Refuse(form_.txtSigned, L"A", L"B");
  EXPECT_EQ(form_.txtDigits.text(), L"7");
}

TEST_F(FormFocusTest, Focus_IsRememberedAndSelectsAllOfABox) {
  form_.GotFocus(form_.tabSettings);
  EXPECT_EQ(form_.focused(), &form_.tabSettings);
  form_.txtDigits.Type(L"18");
  form_.GotFocus(form_.txtDigits);
  EXPECT_EQ(form_.focused(), &form_.txtDigits);
  form_.SetView(nullptr);
  form_.Focus(form_.txtSigned);
  EXPECT_EQ(form_.focused(), &form_.txtSigned);
  EXPECT_EQ(view_.lines, Lines{L"501 selected 0+2"});
}

TEST_F(FormFocusTest, LostFocus_BringsTheNumberIntoItsRange) {
  form_.txtDigits.Type(L"30");
  form_.LostFocus(form_.txtDigits);
  EXPECT_EQ(form_.txtDigits.text(), L"24");
  form_.txtSigned.Type(L"30x");
  form_.LostFocus(form_.txtSigned);
  EXPECT_EQ(form_.txtSigned.text(), L"30x");
  form_.LostFocus(form_.tabSettings);
  EXPECT_EQ(view_.lines, Lines{L"501 text 24"});
}

TEST_F(FormFocusTest, KeyPress_IsFilteredAsTheBoxSays) {
  EXPECT_EQ(form_.KeyPress(form_.txtDigits, L'7'), L'7');
  EXPECT_EQ(form_.KeyPress(form_.txtDigits, L'-'), 0);
  EXPECT_EQ(form_.KeyPress(form_.txtDigits, 8), 8);
  EXPECT_EQ(form_.KeyPress(form_.txtSigned, L'7'), L'7');
  EXPECT_EQ(form_.KeyPress(form_.txtSigned, L'-'), L'-');
  EXPECT_EQ(form_.KeyPress(form_.txtSigned, L'x'), 0);
}

TEST_F(FormFocusTest, KeyPress_TheFormSeesTheKeyAsTyped) {
  std::vector<std::pair<TextBox*, std::int16_t>> seen;
  form_.on_key_press = [&](TextBox& box, std::int16_t key) { seen.emplace_back(&box, key); };
  EXPECT_EQ(form_.KeyPress(form_.txtDigits, L'.'), 0);
  EXPECT_EQ(seen, (std::vector<std::pair<TextBox*, std::int16_t>>{{&form_.txtDigits, L'.'}}));
}

TEST_F(FormFocusTest, KeyPressFails_TheKeyIsDroppedAndTheUserTold) {
  form_.on_key_press = [](TextBox&, std::int16_t) { throw Overflow(); };
  EXPECT_EQ(form_.KeyPress(form_.txtDigits, L'7'), 0);
  EXPECT_EQ(user_.TakeBoxes(), Boxes{ErrorBox(L"test", L"6 - Overflow\r\n(KespCommObj)")});
}

TEST_F(FormFocusTest, FocusComesAndGoesInAFailingWindow_TheUserIsTold) {
  view_.on_change = [](const Control&, Change) { throw Overflow(); };
  form_.GotFocus(form_.txtDigits);
  form_.LostFocus(form_.txtDigits);
  EXPECT_EQ(user_.boxes().size(), 2U);
  EXPECT_EQ(form_.txtDigits.text(), L"12");
}

}  // namespace
}  // namespace kesp
