// A text box of Windows that asks the form about every key and tells it when the focus comes and goes.
#pragma once

#include <windows.h>

#include "dialogs/form.h"

namespace kesp {

// Stands between Windows and one edit control. It lives as long as the dialog.
class NumberEdit {
 public:
  // Throws std::runtime_error when the control's keys cannot be had.
  NumberEdit(Form& form, TextBox& box, HWND edit, HWND dialog);
  ~NumberEdit();
  NumberEdit(const NumberEdit&) = delete;
  NumberEdit& operator=(const NumberEdit&) = delete;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  LRESULT Handle(UINT message, WPARAM first, LPARAM second);
  LRESULT PassOn(UINT message, WPARAM first, LPARAM second) const;

  Form& form_;
  TextBox& box_;
  HWND edit_;
  HWND dialog_;
  WNDPROC original_ = nullptr;
};

}  // namespace kesp
