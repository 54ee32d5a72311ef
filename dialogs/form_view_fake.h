// A view that writes down what it is told, with what the control shows at that moment.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dialogs/controls.h"
#include "dialogs/form_view.h"
#include "dialogs/text_box.h"
#include "support/text.h"

namespace kesp {

class FormViewFake final : public FormView {
 public:
  // One line for each call, in order: "413 text 192", "212 disabled", "focus 413".
  std::vector<std::string> lines;

  // Runs after a line was written; may throw.
  std::function<void(const Control& control, Change change)> on_change;

  void OnChanged(const Control& control, Change change) override {
    lines.push_back(std::to_string(control.id()) + " " + Shown(control, change));
    if (on_change) on_change(control, change);
  }

  void OnFocus(const Control& control) override { lines.push_back("focus " + std::to_string(control.id())); }

 private:
  static std::string Shown(const Control& control, Change change) {
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

  static std::wstring TextOf(const Control& control) {
    const auto* label = dynamic_cast<const Label*>(&control);
    return label != nullptr ? label->text() : dynamic_cast<const TextBox&>(control).text();
  }

  static std::string SelectedText(const TextBox& box) {
    return std::to_string(box.selection_start()) + "+" + std::to_string(box.selection_length());
  }

  static bool IsChecked(const Control& control) {
    const auto* option = dynamic_cast<const OptionButton*>(&control);
    return option != nullptr ? option->selected() : dynamic_cast<const CheckBox&>(control).checked();
  }

  static std::size_t CountOfEntries(const Control& control) {
    const auto* strip = dynamic_cast<const TabStrip*>(&control);
    return strip != nullptr ? strip->tabs().size()
                            : dynamic_cast<const ChoiceList&>(control).entries().size();
  }

  static std::size_t Selection(const Control& control) {
    const auto* strip = dynamic_cast<const TabStrip*>(&control);
    return strip != nullptr ? strip->selection()
                            : dynamic_cast<const ChoiceList&>(control).selection().value();
  }
};

}  // namespace kesp
