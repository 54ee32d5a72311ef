// What using a control changes, and whom it tells.
#include "dialogs/controls.h"

#include <algorithm>
#include <cmath>

#include "dialogs/control_visitor.h"

namespace kesp {

Control::Control(ControlOwner& form, int id, int page) : form_(form), id_(id), page_(page) {
  form.Add(*this);
}

void Control::Enable(bool value) {
  enabled_ = value;
  Changed(Change::kEnabled);
}

void Control::Show(bool value) {
  visible_ = value;
  Changed(Change::kVisible);
}

void Control::Changed(Change change) const {
  form_.Tell(*this, change);
}

void Label::SetText(const std::wstring& value) {
  text_ = value;
  Changed(Change::kText);
}

void Label::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void Button::Click() const {
  if (enabled() && on_click) on_click();
}

void Button::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void CheckBox::SetChecked(bool value) {
  if (checked_ == value) return;
  checked_ = value;
  Changed(Change::kChecked);
  if (on_click) on_click();
}

void CheckBox::Click() {
  if (enabled()) SetChecked(!checked_);
}

void CheckBox::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void OptionButton::Deselect() {
  selected_ = false;
  Changed(Change::kChecked);
}

void OptionButton::Select() {
  selected_ = true;
  Changed(Change::kChecked);
  if (on_click) on_click();
}

void OptionButton::Click() {
  if (enabled()) Select();
}

void OptionButton::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void ChoiceList::Fill(std::vector<Entry> entries) {
  entries_ = std::move(entries);
  selection_.reset();
  Changed(Change::kEntries);
}

void ChoiceList::Select(std::size_t index) {
  if (index >= entries_.size()) return;
  selection_ = index;
  Changed(Change::kSelection);
}

void ChoiceList::SelectValue(std::int32_t value) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [value](const Entry& entry) { return entry.value == value; });
  if (found != entries_.end()) Select(static_cast<std::size_t>(found - entries_.begin()));
}

void ChoiceList::Choose(std::size_t index) {
  if (!enabled() || index >= entries_.size()) return;
  Select(index);
  if (on_choose) on_choose();
}

void ChoiceList::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void UpDown::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void ProgressBar::SetValue(double value) {
  const double shown = std::clamp(value, static_cast<double>(minimum_), static_cast<double>(maximum_));
  value_ = static_cast<std::int32_t>(std::lround(shown));
  Changed(Change::kValue);
}

void ProgressBar::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void Frame::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

void TabStrip::Remove(std::size_t index) {
  tabs_.erase(tabs_.begin() + static_cast<std::ptrdiff_t>(index));
  if (selection_ >= index && selection_ > 0) --selection_;
  Changed(Change::kEntries);
}

void TabStrip::Select(std::size_t index) {
  if (index >= tabs_.size()) return;
  selection_ = index;
  Changed(Change::kSelection);
}

void TabStrip::Choose(std::size_t index) {
  if (index >= tabs_.size()) return;
  Select(index);
  if (on_choose) on_choose();
}

void TabStrip::Accept(ControlVisitor& visitor) const {
  visitor.Visit(*this);
}

}  // namespace kesp
