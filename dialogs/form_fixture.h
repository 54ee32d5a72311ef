// The stage of the tests of what all forms do: one with two pages, whose own part the test writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "dialogs/form.h"
#include "dialogs/form_view_fake.h"
#include "support/user_surface_fake.h"

namespace kesp {

inline constexpr int kDigitsId = 501;
inline constexpr int kSignedId = 502;

// Its own part is what the test puts into its handlers.
class FormForTest final : public Form {
 public:
  FormForTest(UserSurface& user, std::vector<TabStrip::Tab> tabs)
      : Form(user, L"Caption", L"attempting to test", HelpTopic::kTCPSettings, 77, std::move(tabs)) {}

  using Form::Cancel;
  using Form::Focus;
  using Form::Refuse;
  using Form::SwitchPage;

  TextBox txtDigits{*this, kDigitsId, 0, KeyFilter::kDigits, NumberRange{12, 24}};
  TextBox txtSigned{*this, kSignedId, 1, KeyFilter::kSignedDecimal};

  std::function<void()> on_load = [] {};
  std::function<bool()> on_validate = [] { return true; };
  std::function<bool()> on_write = [] { return true; };
  std::function<void(TextBox&, std::int16_t)> on_key_press = [](TextBox&, std::int16_t) {};

 private:
  void LoadSettings() override { on_load(); }
  bool Validate() override { return on_validate(); }
  bool WriteSettings() override { return on_write(); }
  void OnKeyPress(TextBox& box, std::int16_t key) override { on_key_press(box, key); }
};

class FormFixture : public testing::Test {
 protected:
  FormFixture() {
    form_.SetView(&view_);
    user_.on_box = [this] { view_.lines.push_back(L"box"); };
  }

  // A step that writes itself down and returns the outcome.
  std::function<bool()> Step(const wchar_t* name, bool outcome = true) {
    return [this, name, outcome] {
      view_.lines.push_back(name);
      return outcome;
    };
  }

  void Click(std::size_t button) {
    form_.Use([this, button] { form_.cmdOKCancelHelp[button].Click(); });
  }

  UserSurfaceFake user_;
  FormViewFake view_;
  FormForTest form_{user_, {{L"First", 0}, {L"Second", 1}}};
};

}  // namespace kesp
