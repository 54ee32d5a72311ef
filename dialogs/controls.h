// The controls of a settings dialog as data: what each one shows, and what the form does when it is used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/control_owner.h"

namespace kesp {

class ControlVisitor;

// The page of a control that stands beside the tab strip and is seen on every page.
inline constexpr int kEveryPage = -1;

// One control. It belongs to its form, which hands changes on to the view; it neither draws nor knows
// windows. Members named after what a user does (Click, Choose, Type) are for the window and do nothing while
// the control is disabled; the others are the form's own.
class Control {
 public:
  // Announces itself to the form. id is the window's number of it; page the tag of the tab that it is on.
  Control(ControlOwner& form, int id, int page);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  int id() const { return id_; }
  int page() const { return page_; }

  bool enabled() const { return enabled_; }
  void Enable(bool value);

  bool visible() const { return visible_; }
  void Show(bool value);

  virtual void Accept(ControlVisitor& visitor) const = 0;

 protected:
  void Changed(Change change) const;

 private:
  ControlOwner& form_;
  const int id_;
  const int page_;
  bool enabled_ = true;
  bool visible_ = true;
};

// A text that the user cannot change. Captions that never change stand in the dialog's resource alone.
class Label final : public Control {
 public:
  using Control::Control;

  const std::wstring& text() const { return text_; }
  void SetText(const std::wstring& value);

  void Accept(ControlVisitor& visitor) const override;

 private:
  std::wstring text_;
};

class Button final : public Control {
 public:
  using Control::Control;

  void Click() const;
  std::function<void()> on_click;

  void Accept(ControlVisitor& visitor) const override;
};

class CheckBox final : public Control {
 public:
  // tool_tip is shown when the mouse rests on the box; none when empty.
  CheckBox(ControlOwner& form, int id, int page, std::wstring tool_tip = {})
      : Control(form, id, page), tool_tip_(std::move(tool_tip)) {}

  const std::wstring& tool_tip() const { return tool_tip_; }
  bool checked() const { return checked_; }

  // Runs on_click when that changes the box, as a click does.
  void SetChecked(bool value);
  void Click();
  std::function<void()> on_click;

  void Accept(ControlVisitor& visitor) const override;

 private:
  const std::wstring tool_tip_;
  bool checked_ = false;
};

// One of several of which one is selected; the form deselects the others.
class OptionButton final : public Control {
 public:
  using Control::Control;

  bool selected() const { return selected_; }
  void Deselect();

  // Runs on_click, also when it is selected already.
  void Select();
  void Click();
  std::function<void()> on_click;

  void Accept(ControlVisitor& visitor) const override;

 private:
  bool selected_ = false;
};

// A list of which one entry may be selected: a drop-down list, or one with an image before each entry.
class ChoiceList final : public Control {
 public:
  using Control::Control;

  struct Entry {
    std::wstring text;
    std::int32_t value = 0;  // what the entry stands for: item data of a list, tag of an image combo
    std::string image;       // key of its image; empty for none
    bool operator==(const Entry&) const = default;
  };

  const std::vector<Entry>& entries() const { return entries_; }

  // Replaces all entries; none is selected then.
  void Fill(std::vector<Entry> entries);

  // Index of the selected entry.
  std::optional<std::size_t> selection() const { return selection_; }
  void Select(std::size_t index);

  // Selects the first entry with that value; leaves the selection as it was when there is none.
  void SelectValue(std::int32_t value);

  // The selected entry; null when none is.
  const Entry* selected() const { return selection_ ? &entries_[*selection_] : nullptr; }

  // What the selected entry stands for, as the enumeration that the list is made of.
  template <typename Enumeration>
  Enumeration SelectedAs(Enumeration when_none) const {
    return selection_ ? static_cast<Enumeration>(entries_[*selection_].value) : when_none;
  }

  // Selects, and runs on_choose.
  void Choose(std::size_t index);
  std::function<void()> on_choose;

  void Accept(ControlVisitor& visitor) const override;

 private:
  std::vector<Entry> entries_;
  std::optional<std::size_t> selection_;
};

// A pair of arrows that steps the number in the text box to its left.
class UpDown final : public Control {
 public:
  UpDown(ControlOwner& form, int id, int page, std::int32_t minimum, std::int32_t maximum, std::int32_t step)
      : Control(form, id, page), minimum_(minimum), maximum_(maximum), step_(step) {}

  std::int32_t minimum() const { return minimum_; }
  std::int32_t maximum() const { return maximum_; }
  std::int32_t step() const { return step_; }

  void Accept(ControlVisitor& visitor) const override;

 private:
  const std::int32_t minimum_;
  const std::int32_t maximum_;
  const std::int32_t step_;
};

class ProgressBar final : public Control {
 public:
  ProgressBar(ControlOwner& form, int id, int page, std::int32_t minimum, std::int32_t maximum)
      : Control(form, id, page), minimum_(minimum), maximum_(maximum), value_(minimum) {}

  std::int32_t minimum() const { return minimum_; }
  std::int32_t maximum() const { return maximum_; }
  std::int32_t value() const { return value_; }

  // A value beyond either end is shown at that end.
  void SetValue(double value);

  void Accept(ControlVisitor& visitor) const override;

 private:
  const std::int32_t minimum_;
  const std::int32_t maximum_;
  std::int32_t value_;
};

// What holds the controls of one page.
class Frame final : public Control {
 public:
  using Control::Control;
  void Accept(ControlVisitor& visitor) const override;
};

// The tabs above the pages. One is selected always.
class TabStrip final : public Control {
 public:
  struct Tab {
    std::wstring caption;
    int tag;  // the page that it shows
    bool operator==(const Tab&) const = default;
  };

  TabStrip(ControlOwner& form, int id, std::vector<Tab> tabs)
      : Control(form, id, kEveryPage), tabs_(std::move(tabs)) {}

  const std::vector<Tab>& tabs() const { return tabs_; }
  void Remove(std::size_t index);

  std::size_t selection() const { return selection_; }
  void Select(std::size_t index);

  // Selects, and runs on_choose.
  void Choose(std::size_t index);
  std::function<void()> on_choose;

  void Accept(ControlVisitor& visitor) const override;

 private:
  std::vector<Tab> tabs_;
  std::size_t selection_ = 0;
};

}  // namespace kesp
