// Brings the windows of the controls to what the form says of them.
#pragma once

#include <windows.h>

#include <map>

#include "dialogs/control_images_win.h"
#include "dialogs/control_visitor.h"

namespace kesp {

// Knows the window of each control and changes it. What Windows reports meanwhile is no act of the user.
class ControlPainter final : private ControlVisitor {
 public:
  void SetWindow(const Control& control, HWND window) { windows_[&control] = window; }

  // null for a control that has no window.
  HWND WindowOf(const Control& control) const;

  // The pictures of an image combo; they outlive the painter.
  void SetImages(const Control& control, const ControlImages& images);

  // An entry of such a list, as the system asks for it.
  void DrawItem(const DRAWITEMSTRUCT& item) const;

  // Everything about the control, and what has changed of it.
  void DrawAll(const Control& control);
  void Draw(const Control& control, Change change);

  // Whether a window is being changed just now.
  bool is_drawing() const { return drawing_; }

 private:
  class Stroke;

  void Visit(const Label& label) override;
  void Visit(const Button& button) override;
  void Visit(const CheckBox& box) override;
  void Visit(const OptionButton& button) override;
  void Visit(const ChoiceList& list) override;
  void Visit(const UpDown& arrows) override;
  void Visit(const ProgressBar& bar) override;
  void Visit(const Frame& frame) override;
  void Visit(const TabStrip& strip) override;
  void Visit(const TextBox& box) override;

  void FillList(const ChoiceList& list) const;
  void FillTabs(const TabStrip& strip) const;
  LRESULT Send(UINT message, WPARAM first, LPARAM second) const {
    return SendMessageW(window_, message, first, second);
  }

  std::map<const Control*, HWND> windows_;
  std::map<const Control*, const ControlImages*> images_;
  // What is being drawn.
  HWND window_ = nullptr;
  Change change_ = Change::kEnabled;
  bool drawing_ = false;
};

}  // namespace kesp
