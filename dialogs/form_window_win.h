// The window of a form: made from the resources, it draws what the form says and tells it what the user does.
#pragma once

#include <windows.h>

#include <deque>
#include <map>
#include <vector>

#include "dialogs/control_images_win.h"
#include "dialogs/control_painter_win.h"
#include "dialogs/form.h"
#include "dialogs/number_edit_win.h"
#include "dialogs/tab_page_win.h"

namespace kesp {

// Which resources a form is drawn with.
struct FormResources {
  int dialog;
  std::vector<int> pages;  // the index is the page
  // The pictures of the image combos, by the number of the control.
  std::map<int, std::vector<ControlImages::Image>> images;
};

// Shows a form once. Used by the thread that the client calls on, whose messages it goes on delivering.
class FormWindow final : private FormView {
 public:
  // owner is the window in front of which it is shown; null for none.
  FormWindow(Form& form, const FormResources& resources, HWND owner);
  ~FormWindow() override;
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Shows the window and returns when the form has closed. The thread's other windows take no input
  // meanwhile; the control that had the focus has it again afterwards. When the program is told to end, or
  // the owner goes, the dialog is cancelled. Throws std::runtime_error when the window cannot be made.
  void ShowModal();

 private:
  // FormView
  void OnChanged(const Control& control, Change change) override { painter_.Draw(control, change); }
  void OnFocus(const Control& control) override;

  // Of the dialog and its pages alike.
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  INT_PTR Handle(HWND window, UINT message, WPARAM first, LPARAM second);

  void Make();
  void Destroy();
  HWND MakeDialog(int resource, HWND parent);
  void MakePages();
  void BindControls();
  void BindTextBoxes();
  void CloseGaps() const;
  void AddToolTips();
  HWND VisiblePage() const;
  void GiveFocus(HWND window) const;
  void FocusFirst() const;
  void RunLoop();

  // Ctrl with Tab, Page Up or Page Down anywhere in the dialog.
  bool IsPageKey(const MSG& message) const;
  void StepPage(const MSG& message);

  void OnCommand(int id, int code);
  void OnClick(Control& control);
  bool IsOnlyFocused(const Control& control) const;
  void OnListNotice(ChoiceList& list, int code);
  void OnTabChosen(std::size_t index);
  void OnColorsChanged(WPARAM first, LPARAM second);
  HBRUSH BackgroundFor(HWND page, HWND window, HDC device);
  Control* FindControl(int id) const;

  Form& form_;
  const FormResources resources_;
  HWND owner_;
  HWND dialog_ = nullptr;
  std::vector<HWND> pages_;  // null where the form has no such tab
  ControlPainter painter_;
  std::deque<ControlImages> images_;
  std::deque<NumberEdit> edits_;
  std::map<HWND, TabPage> backgrounds_;
  const ChoiceList* told_by_closing_ = nullptr;  // whose choice was seen when it closed, before it was told
};

}  // namespace kesp
