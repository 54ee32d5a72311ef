// The view that writes down what it is told.
#include "dialogs/form_view_fake.h"

#include "dialogs/controls.h"
#include "dialogs/text_box.h"

namespace kesp {

namespace {

std::wstring TextOf(const Control& control) {
  const auto* label = dynamic_cast<const Label*>(&control);
  return label != nullptr ? label->text() : dynamic_cast<const TextBox&>(control).text();
}

std::wstring SelectedText(const TextBox& box) {
  return std::to_wstring(box.selection_start()) + L"+" + std::to_wstring(box.selection_length());
}

bool IsChecked(const Control& control) {
  const auto* option = dynamic_cast<const OptionButton*>(&control);
  return option != nullptr ? option->selected() : dynamic_cast<const CheckBox&>(control).checked();
}

std::size_t CountOfEntries(const Control& control) {
  const auto* strip = dynamic_cast<const TabStrip*>(&control);
  return strip != nullptr ? strip->tabs().size() : dynamic_cast<const ChoiceList&>(control).entries().size();
}

std::wstring Selected(const Control& control) {
  const auto* strip = dynamic_cast<const TabStrip*>(&control);
  return strip != nullptr ? strip->tabs().at(strip->selection()).caption
                          : dynamic_cast<const ChoiceList&>(control).selected()->text;
}

std::wstring Shown(const Control& control, Change change) {
  switch (change) {
    case Change::kEnabled:
      return control.enabled() ? L"enabled" : L"disabled";
    case Change::kVisible:
      return control.visible() ? L"shown" : L"hidden";
    case Change::kText:
      return L"text " + TextOf(control);
    case Change::kSelectedText:
      return L"selected " + SelectedText(dynamic_cast<const TextBox&>(control));
    case Change::kChecked:
      return IsChecked(control) ? L"checked" : L"unchecked";
    case Change::kEntries:
      return L"entries " + std::to_wstring(CountOfEntries(control));
    case Change::kSelection:
      return L"selects " + Selected(control);
    case Change::kValue:
      return L"value " + std::to_wstring(dynamic_cast<const ProgressBar&>(control).value());
  }
  return L"?";
}

}  // namespace

FormViewFake::FormViewFake() = default;

FormViewFake::~FormViewFake() = default;

std::wstring FormViewFake::NameOf(const Control& control) const {
  const auto found = names.find(control.id());
  return found == names.end() ? std::to_wstring(control.id()) : found->second;
}

void FormViewFake::OnChanged(const Control& control, Change change) {
  lines.push_back(NameOf(control) + L" " + Shown(control, change));
  if (on_change) on_change(control, change);
}

void FormViewFake::OnFocus(const Control& control) {
  lines.push_back(NameOf(control) + L" focused");
}

}  // namespace kesp
