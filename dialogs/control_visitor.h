// One call for each kind of control.
#pragma once

#include "dialogs/controls.h"
#include "dialogs/text_box.h"

namespace kesp {

class ControlVisitor {
 public:
  virtual ~ControlVisitor() = default;

  virtual void Visit(const Label& label) = 0;
  virtual void Visit(const Button& button) = 0;
  virtual void Visit(const CheckBox& box) = 0;
  virtual void Visit(const OptionButton& button) = 0;
  virtual void Visit(const ChoiceList& list) = 0;
  virtual void Visit(const UpDown& arrows) = 0;
  virtual void Visit(const ProgressBar& bar) = 0;
  virtual void Visit(const Frame& frame) = 0;
  virtual void Visit(const TabStrip& strip) = 0;
  virtual void Visit(const TextBox& box) = 0;
};

}  // namespace kesp
