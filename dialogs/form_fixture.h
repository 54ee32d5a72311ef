// The stage of the tests of what all forms do: one with two pages, whose own part the test writes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
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
  FormForTest(UserSurface& user, std::vector<TabStrip::Tab> tabs);
  ~FormForTest() override;

  using Form::Cancel;
  using Form::Focus;
  using Form::Refuse;
  using Form::SwitchPage;

  TextBox txtDigits;
  TextBox txtSigned;

  std::function<void()> on_load = [] {};
  std::function<bool()> on_validate = [] { return true; };
  std::function<bool()> on_write = [] { return true; };
  std::function<void(TextBox&, std::int16_t)> on_key_press = [](TextBox&, std::int16_t) {};

 private:
  void LoadSettings() override;
  bool Validate() override;
  bool WriteSettings() override;
  void OnKeyPress(TextBox& box, std::int16_t key) override;
};

class FormFixture : public testing::Test {
 protected:
  FormFixture();
  ~FormFixture() override;

  // A step that writes itself down and returns the outcome.
  std::function<bool()> Step(const wchar_t* name, bool outcome = true);

  void Click(std::size_t button);

  UserSurfaceFake user_;
  FormViewFake view_;
  FormForTest form_{user_, {{L"First", 0}, {L"Second", 1}}};
};

}  // namespace kesp
