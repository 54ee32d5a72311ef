// Keys and focus of a text box, on their way from Windows to the form.
#include "dialogs/number_edit_win.h"

#include <imm.h>

#include <stdexcept>

namespace kesp {

NumberEdit::NumberEdit(Form& form, TextBox& box, HWND edit, HWND dialog)
    : form_(form), box_(box), edit_(edit), dialog_(dialog) {
  const auto self = reinterpret_cast<LONG_PTR>(this);
  SetWindowLongPtrW(edit_, GWLP_USERDATA, self);
  // The procedure relies on it.
  if (GetWindowLongPtrW(edit_, GWLP_USERDATA) == self) {
    original_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(edit_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NumberEdit::Procedure)));
  }
  // One whose keys pass by the form would hand any text to the transport.
  if (original_ == nullptr) {
    throw std::runtime_error("The dialog's window cannot be made: a text box does not ask about its keys");
  }
  // What an input method composes would pass by the filter, and a number needs none.
  ImmAssociateContext(edit_, nullptr);
}

NumberEdit::~NumberEdit() {
  if (IsWindow(edit_) == FALSE) return;
  SetWindowLongPtrW(edit_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original_));
}

LRESULT CALLBACK NumberEdit::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  auto& self = *reinterpret_cast<NumberEdit*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  try {
    return self.Handle(message, first, second);
  } catch (...) {
    // No exception may pass through the system. The form shows its own failures; this is memory at its end.
    return 0;
  }
}

LRESULT NumberEdit::Handle(UINT message, WPARAM first, LPARAM second) {
  if (message == WM_CHAR) {
    const std::int16_t key = form_.KeyPress(box_, static_cast<std::int16_t>(first));
    return key == 0 ? 0 : PassOn(message, static_cast<std::uint16_t>(key), second);
  }
  const LRESULT result = PassOn(message, first, second);
  // Another program's window, or a box in front of the dialog, takes the focus for a while only: the user has
  // not left the box then.
  const bool within = (message == WM_SETFOCUS || message == WM_KILLFOCUS) &&
                      IsChild(dialog_, reinterpret_cast<HWND>(first)) != FALSE;
  if (within && message == WM_SETFOCUS) form_.GotFocus(box_);
  if (within && message == WM_KILLFOCUS) form_.LostFocus(box_);
  return result;
}

LRESULT NumberEdit::PassOn(UINT message, WPARAM first, LPARAM second) const {
  return CallWindowProcW(original_, edit_, message, first, second);
}

}  // namespace kesp
