// What a control knows of its form: that it belongs to it, and whom it tells of changes.
#pragma once

#include <vector>

#include "dialogs/form_view.h"

namespace kesp {

// Keeps the list of a form's controls and hands their changes on to the view, when there is one.
class ControlOwner {
 public:
  ControlOwner() = default;
  virtual ~ControlOwner() = default;
  ControlOwner(const ControlOwner&) = delete;
  ControlOwner& operator=(const ControlOwner&) = delete;

  // Every control, in the order of making.
  const std::vector<Control*>& controls() const { return controls_; }

  // Who draws the controls from now on; null for nobody.
  void SetView(FormView* view) { view_ = view; }

  void Add(Control& control) { controls_.push_back(&control); }
  void Tell(const Control& control, Change change) const {
    if (view_ != nullptr) view_->OnChanged(control, change);
  }

 protected:
  FormView* view() const { return view_; }

 private:
  std::vector<Control*> controls_;
  FormView* view_ = nullptr;
};

}  // namespace kesp
