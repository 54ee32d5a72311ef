// A view that writes down what it is told, with what the control shows at that moment.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "dialogs/form_view.h"
#include "support/lines_fixture.h"

namespace kesp {

class FormViewFake final : public FormView {
 public:
  FormViewFake();
  ~FormViewFake() override;

  // One line for each call, in order: "413 text 192", "212 disabled", "413 focused".
  Lines lines;

  // What the lines call a control that has one of these numbers.
  std::map<int, std::wstring> names;

  // Runs after a line was written; may throw.
  std::function<void(const Control& control, Change change)> on_change;

  void OnChanged(const Control& control, Change change) override;
  void OnFocus(const Control& control) override;

 private:
  std::wstring NameOf(const Control& control) const;
};

}  // namespace kesp
