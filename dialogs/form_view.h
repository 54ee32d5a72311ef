// What a form tells whoever draws it.
#pragma once

namespace kesp {

class Control;
class TextBox;

// What of a control has changed.
enum class Change { kEnabled, kVisible, kText, kSelectedText, kChecked, kEntries, kSelection, kValue };

// Draws a form. Calls come on the dialog's thread, in the order of the changes, and each is drawn at once: a
// message box that follows must show the dialog as it is then.
class FormView {
 public:
  virtual ~FormView() = default;

  virtual void OnChanged(const Control& control, Change change) = 0;

  // The control gets the keyboard focus.
  virtual void OnFocus(const Control& control) = 0;
};

}  // namespace kesp
