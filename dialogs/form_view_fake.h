// A view that writes down what it is told, with what the control shows at that moment.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dialogs/form_view.h"

namespace kesp {

class FormViewFake final : public FormView {
 public:
  FormViewFake();
  ~FormViewFake() override;

  // One line for each call, in order: "413 text 192", "212 disabled", "focus 413".
  std::vector<std::string> lines;

  // Runs after a line was written; may throw.
  std::function<void(const Control& control, Change change)> on_change;

  void OnChanged(const Control& control, Change change) override;
  void OnFocus(const Control& control) override;
};

}  // namespace kesp
