// The view that writes down what it is told.
#include "dialogs/form_view_fake.h"

#include "dialogs/controls.h"
#include "dialogs/text_box.h"
#include "support/text.h"

namespace kesp {

namespace {

std::wstring TextOf(const Control& control) {
  const auto* label = dynamic_cast<const Label*>(&control);
  return label != nullptr ? label->text() : dynamic_cast<const TextBox&>(control).text();
}

std::string SelectedText(const TextBox& box) {
  return std::to_string(box.selection_start()) + "+" + std::to_string(box.selection_length());
}

bool IsChecked(const Control& control) {
  const auto* option = dynamic_cast<const OptionButton*>(&control);
  return option != nullptr ? option->selected() : dynamic_cast<const CheckBox&>(control).checked();
}

std::size_t CountOfEntries(const Control& control) {
  const auto* strip = dynamic_cast<const TabStrip*>(&control);
  return strip != nullptr ? strip->tabs().size() : dynamic_cast<const ChoiceList&>(control).entries().size();
}

std::size_t Selection(const Control& control) {
  const auto* strip = dynamic_cast<const TabStrip*>(&control);
  return strip != nullptr ? strip->selection() : dynamic_cast<const ChoiceList&>(control).selection().value();
}

std::string Shown(const Control& control, Change change) {
  switch (change) {
    case Change::kEnabled:
      return control.enabled() ? "enabled" : "disabled";
    case Change::kVisible:
      return control.visible() ? "shown" : "hidden";
    case Change::kText:
      return "text " + SystemCodePage().ToBytes(TextOf(control));
    case Change::kSelectedText:
      return "selected " + SelectedText(dynamic_cast<const TextBox&>(control));
    case Change::kChecked:
      return IsChecked(control) ? "checked" : "unchecked";
    case Change::kEntries:
      return "entries " + std::to_string(CountOfEntries(control));
    case Change::kSelection:
      return "selection " + std::to_string(Selection(control));
    case Change::kValue:
      return "value " + std::to_string(dynamic_cast<const ProgressBar&>(control).value());
  }
  return "?";
}

}  // namespace

FormViewFake::FormViewFake() = default;

FormViewFake::~FormViewFake() = default;

void FormViewFake::OnChanged(const Control& control, Change change) {
  lines.push_back(std::to_string(control.id()) + " " + Shown(control, change));
  if (on_change) on_change(control, change);
}

void FormViewFake::OnFocus(const Control& control) {
  lines.push_back("focus " + std::to_string(control.id()));
}

}  // namespace kesp
