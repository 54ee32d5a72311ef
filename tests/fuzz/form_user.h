// A user at one of the settings dialogs, who does what the bytes say.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>

#include "dialogs/form.h"
#include "dialogs/text_box.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/require.h"

namespace kesp {

// What a user types, or brings from the clipboard.
inline std::wstring TypedText(FuzzInput& input) {
  constexpr const wchar_t* kTexts[] = {L"",      L"0",     L"1",   L"255",   L"256", L"65535",
                                       L"65536", L"32768", L"0.5", L"1e999", L"-1",  L"99999999999999999999"};
  const std::size_t place = input.Below(16);
  return place < std::size(kTexts) ? kTexts[place] : WideText(input.Bytes(input.Below(8)));
}

// Uses one control the way a window passes it on: a click, a choice, a text.
class FormUser {
 public:
  FormUser(Form& form, FuzzInput& input) : form_(form), input_(input) {}

  // Any control but the buttons that end the dialog.
  Control& ChooseControl() const {
    const auto& controls = form_.controls();
    Control& control = *controls[input_.Below(controls.size())];
    const bool ends =
        &control == &form_.cmdOKCancelHelp[Form::kOK] || &control == &form_.cmdOKCancelHelp[Form::kCancel];
    return ends ? form_.cmdOKCancelHelp[Form::kHelp] : control;
  }

  void Use(Control& control) {
    if (!control.enabled() || !control.visible()) return;
    if (auto* button = dynamic_cast<Button*>(&control)) form_.Use([&] { button->Click(); });
    if (auto* box = dynamic_cast<CheckBox*>(&control)) form_.Use([&] { box->Click(); });
    if (auto* option = dynamic_cast<OptionButton*>(&control)) form_.Use([&] { option->Click(); });
    if (auto* list = dynamic_cast<ChoiceList*>(&control)) {
      const std::size_t index = input_.Below(16);
      form_.Use([&] { list->Choose(index); });
    }
    if (auto* strip = dynamic_cast<TabStrip*>(&control)) {
      const std::size_t index = input_.Below(4);
      form_.Use([&] { strip->Choose(index); });
    }
    if (auto* box = dynamic_cast<TextBox*>(&control)) Write(*box);
  }

  // OK by the mouse takes the focus from a box; by Enter it does not.
  void Confirm(bool by_mouse) {
    Button& button = form_.cmdOKCancelHelp[Form::kOK];
    if (by_mouse && entered_ != nullptr) {
      form_.LostFocus(*entered_);
      entered_ = nullptr;
    }
    form_.Use([&] { button.Click(); });
  }

  void Cancel() {
    const Button& button = form_.cmdOKCancelHelp[Form::kCancel];
    form_.Use([&] { button.Click(); });
  }

 private:
  void Write(TextBox& box) {
    if (entered_ != nullptr && entered_ != &box) form_.LostFocus(*entered_);
    form_.GotFocus(box);
    entered_ = &box;
    std::wstring text;
    if (input_.Flag()) {
      text = TypedText(input_);
    } else {
      for (const wchar_t c : WideText(input_.Bytes(input_.Below(8)))) {
        const std::int16_t key = form_.KeyPress(box, static_cast<std::int16_t>(c));
        if (key >= L' ') text += static_cast<wchar_t>(key);
      }
    }
    form_.Use([&] { box.Type(text); });
  }

  Form& form_;
  FuzzInput& input_;
  TextBox* entered_ = nullptr;
};

// What holds for every form at any time.
inline void RequireForm(const Form& form) {
  Require(form.tabSettings.selection() < form.tabSettings.tabs().size(), "a page is selected");
  std::size_t frames = 0;
  for (const Frame& frame : form.framSettings) frames += frame.visible() ? 1U : 0U;
  Require(frames == 1, "one page is seen");
}

}  // namespace kesp
