// Tests of the controls: what using one changes, what it runs, and what the view is told.
#include "dialogs/controls.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "dialogs/form_view_fake.h"

namespace kesp {
namespace {

class ControlsTest : public testing::Test {
 protected:
  ControlsTest() { form_.SetView(&view_); }

  // A handler that writes down that it runs, among what the view is told.
  std::function<void()> Handler() {
    return [this] { view_.lines.push_back(L"handler"); };
  }

  ControlOwner form_;
  FormViewFake view_;
};

TEST_F(ControlsTest, NewControl_IsEnabledVisibleAndKnownToItsForm) {
  Label first(form_, 5, 2);
  Button second(form_, 6, kEveryPage);
  EXPECT_TRUE(first.enabled());
  EXPECT_TRUE(first.visible());
  EXPECT_EQ(first.id(), 5);
  EXPECT_EQ(first.page(), 2);
  EXPECT_EQ(form_.controls(), (std::vector<Control*>{&first, &second}));
  EXPECT_TRUE(view_.lines.empty());
}

TEST_F(ControlsTest, EnableShowAndText_AreToldToTheView) {
  Label label(form_, 5, 0);
  label.Enable(false);
  EXPECT_FALSE(label.enabled());
  label.Show(false);
  EXPECT_FALSE(label.visible());
  label.Enable(true);
  label.Show(true);
  label.SetText(L"Power level 4");
  EXPECT_EQ(view_.lines,
            (Lines{L"5 disabled", L"5 hidden", L"5 enabled", L"5 shown", L"5 text Power level 4"}));
}

TEST_F(ControlsTest, ChangeWithoutView_IsKept) {
  Label label(form_, 5, 0);
  form_.SetView(nullptr);
  label.SetText(L"x");
  EXPECT_EQ(label.text(), L"x");
  EXPECT_TRUE(view_.lines.empty());
}

// Each is used without a handler first, and at last while it is disabled.
TEST_F(ControlsTest, Click_ChangesThenRunsTheHandlerAndOnlyWhileEnabled) {
  Button button(form_, 5, 0);
  CheckBox box(form_, 6, 0, L"tip");
  OptionButton option(form_, 7, 0);
  EXPECT_EQ(box.tool_tip(), L"tip");
  const auto click_all = [&] {
    button.Click();
    box.Click();
    option.Click();
  };
  click_all();
  EXPECT_EQ(view_.lines, (Lines{L"6 checked", L"7 checked"}));
  view_.lines.clear();
  button.on_click = box.on_click = option.on_click = Handler();
  click_all();
  EXPECT_EQ(view_.lines, (Lines{L"handler", L"6 unchecked", L"handler", L"7 checked", L"handler"}));
  for (Control* control :
       {static_cast<Control*>(&button), static_cast<Control*>(&box), static_cast<Control*>(&option)}) {
    control->Enable(false);
  }
  view_.lines.clear();
  click_all();
  EXPECT_EQ(view_.lines, Lines{});
  EXPECT_FALSE(box.checked());
  // The form may do what the user may not.
  box.SetChecked(true);
  EXPECT_TRUE(box.checked());
}

TEST_F(ControlsTest, CheckBoxSetChecked_RunsTheHandlerOnlyWhenItChanges) {
  CheckBox box(form_, 5, 0);
  EXPECT_EQ(box.tool_tip(), L"");
  EXPECT_FALSE(box.checked());
  box.on_click = Handler();
  box.SetChecked(false);
  EXPECT_TRUE(view_.lines.empty());
  box.SetChecked(true);
  box.SetChecked(true);
  EXPECT_EQ(view_.lines, (Lines{L"5 checked", L"handler"}));
}

TEST_F(ControlsTest, OptionSelectAndDeselect_AreShown) {
  OptionButton option(form_, 5, 0);
  EXPECT_FALSE(option.selected());
  option.on_click = Handler();
  option.Select();
  EXPECT_TRUE(option.selected());
  option.Deselect();
  EXPECT_FALSE(option.selected());
  EXPECT_EQ(view_.lines, (Lines{L"5 checked", L"handler", L"5 unchecked"}));
}

class ListTest : public ControlsTest {
 protected:
  ListTest() {
    list_.Fill({{L"a", 7, ""}, {L"b", 8, ""}, {L"c", 8, ""}});
    EXPECT_EQ(view_.lines, Lines{L"5 entries 3"});
    view_.lines.clear();
  }

  ChoiceList list_{form_, 5, 0};
};

TEST_F(ListTest, Fill_ReplacesTheEntriesAndSelectsNone) {
  list_.Select(1);
  list_.Fill({{L"x", 1, "image"}});
  EXPECT_EQ(list_.entries(), (std::vector<ChoiceList::Entry>{{L"x", 1, "image"}}));
  EXPECT_FALSE(list_.selection().has_value());
  EXPECT_EQ(list_.selected(), nullptr);
  EXPECT_EQ(view_.lines, (Lines{L"5 selects b", L"5 entries 1"}));
}

// By its place or its value; of equal ones the first. What is not there changes nothing.
TEST_F(ListTest, SelectByProgram_RunsNoHandler) {
  list_.on_choose = Handler();
  list_.SelectValue(9);
  EXPECT_FALSE(list_.selection().has_value());
  list_.Select(2);
  EXPECT_EQ(list_.selected(), &list_.entries()[2]);
  list_.Select(3);
  list_.SelectValue(9);
  EXPECT_EQ(list_.selection(), 2U);
  list_.SelectValue(8);
  EXPECT_EQ(list_.selection(), 1U);
  list_.SelectValue(7);
  EXPECT_EQ(view_.lines, (Lines{L"5 selects c", L"5 selects b", L"5 selects a"}));
}

TEST_F(ListTest, SelectedAs_IsTheEntrysValueOrTheOneForNone) {
  enum class Letter : std::int32_t { kNone = -1, kA = 7 };
  EXPECT_EQ(list_.SelectedAs(Letter::kNone), Letter::kNone);
  list_.Select(0);
  EXPECT_EQ(list_.SelectedAs(Letter::kNone), Letter::kA);
}

TEST_F(ListTest, Choose_SelectsAndThenRunsTheHandler) {
  list_.Choose(0);  // without a handler
  list_.on_choose = Handler();
  list_.Choose(1);
  list_.Choose(1);
  list_.Choose(3);  // there is none
  EXPECT_EQ(view_.lines, (Lines{L"5 selects a", L"5 selects b", L"handler", L"5 selects b", L"handler"}));
  list_.Enable(false);
  view_.lines.clear();
  list_.Choose(0);
  EXPECT_EQ(list_.selection(), 1U);
  EXPECT_EQ(view_.lines, Lines{});
}

TEST_F(ControlsTest, ProgressBarSetValue_IsShownInsideItsEnds) {
  ProgressBar bar(form_, 5, 0, 1, 4);
  EXPECT_EQ(bar.minimum(), 1);
  EXPECT_EQ(bar.maximum(), 4);
  EXPECT_EQ(bar.value(), 1);
  const struct {
    double value;
    std::int32_t shown;
  } rows[] = {{3, 3}, {0, 1}, {-1e300, 1}, {4, 4}, {5, 4}, {1e300, 4}, {2.6, 3}};
  for (const auto& row : rows) {
    bar.SetValue(row.value);
    EXPECT_EQ(bar.value(), row.shown) << row.value;
  }
  EXPECT_EQ(view_.lines.front(), L"5 value 3");
  EXPECT_EQ(view_.lines.size(), std::size(rows));
}

TEST_F(ControlsTest, TabStripChoose_SelectsAndThenRunsTheHandler) {
  TabStrip strip(form_, 5, {{L"a", 0}, {L"b", 1}});
  EXPECT_EQ(strip.selection(), 0U);
  strip.Choose(1);  // without a handler
  strip.on_choose = Handler();
  strip.Choose(0);
  strip.Choose(2);  // there is none
  strip.Select(1);
  strip.Select(2);
  EXPECT_EQ(strip.selection(), 1U);
  EXPECT_EQ(view_.lines, (Lines{L"5 selects b", L"5 selects a", L"handler", L"5 selects b"}));
}

TEST_F(ControlsTest, TabStripRemove_KeepsTheSelectedTabWhereItCan) {
  const struct {
    std::size_t selected, removed, selected_then;
  } rows[] = {{0, 2, 0}, {2, 0, 1}, {2, 2, 1}, {1, 1, 0}, {0, 0, 0}, {1, 2, 1}};
  for (const auto& row : rows) {
    TabStrip strip(form_, 5, {{L"a", 0}, {L"b", 1}, {L"c", 2}});
    strip.Select(row.selected);
    strip.Remove(row.removed);
    EXPECT_EQ(strip.tabs().size(), 2U);
    EXPECT_EQ(strip.selection(), row.selected_then) << row.selected << " " << row.removed;
  }
}

TEST_F(ControlsTest, TabStripRemove_LeavesTheOthersWithTheirPages) {
  TabStrip strip(form_, 5, {{L"a", 0}, {L"b", 1}, {L"c", 2}});
  strip.Remove(1);
  EXPECT_EQ(strip.tabs(), (std::vector<TabStrip::Tab>{{L"a", 0}, {L"c", 2}}));
  EXPECT_EQ(view_.lines, Lines{L"5 entries 2"});
}

}  // namespace
}  // namespace kesp
