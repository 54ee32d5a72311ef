// The form whose own part the test writes, and its stage.
#include "dialogs/form_fixture.h"

#include <utility>

namespace kesp {

FormForTest::FormForTest(UserSurface& user, std::vector<TabStrip::Tab> tabs)
    : Form(user, L"Caption", L"attempting to test", 77, std::move(tabs)),
      txtDigits(*this, kDigitsId, 0, KeyFilter::kDigits, NumberRange{12, 24}),
      txtSigned(*this, kSignedId, 1, KeyFilter::kSignedDecimal) {}

FormForTest::~FormForTest() = default;

void FormForTest::LoadSettings() {
  on_load();
}

bool FormForTest::Validate() {
  return on_validate();
}

bool FormForTest::WriteSettings() {
  return on_write();
}

void FormForTest::OnKeyPress(TextBox& box, std::int16_t key) {
  on_key_press(box, key);
}

FormFixture::FormFixture() {
  form_.SetView(&view_);
  user_.on_box = [this] { view_.lines.push_back(L"box"); };
}

FormFixture::~FormFixture() = default;

std::function<bool()> FormFixture::Step(const wchar_t* name, bool outcome) {
  return [this, name, outcome] {
    view_.lines.push_back(name);
    return outcome;
  };
}

void FormFixture::Click(std::size_t button) {
  form_.Use([this, button] { form_.cmdOKCancelHelp[button].Click(); });
}

}  // namespace kesp
