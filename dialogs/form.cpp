// The life of a form: loaded at the first paint, confirmed when its entries are valid and written, or
// cancelled.
#include "dialogs/form.h"

#include <utility>

#include "dialogs/dialog_ids.h"
#include "dialogs/editing.h"
#include "support/attempt.h"
#include "support/error_trap.h"

namespace kesp {

Form::Form(UserSurface& user, std::wstring caption, std::wstring action, HelpTopic own_topic,
           std::int32_t help_context, std::vector<TabStrip::Tab> tabs)
    : cmdOKCancelHelp{{{*this, ID_OK, kEveryPage},
                       {*this, ID_CANCEL, kEveryPage},
                       {*this, ID_HELP, kEveryPage}}},
      tabSettings(*this, ID_TAB_SETTINGS, std::move(tabs)),
      user_(user),
      caption_(std::move(caption)),
      action_(std::move(action)),
      own_topic_(own_topic),
      help_context_(help_context) {
  for (const TabStrip::Tab& tab : tabSettings.tabs()) {
    framSettings.emplace_back(*this, ID_FRAM_SETTINGS + tab.tag, kEveryPage);
  }
  tabSettings.on_choose = [this] { SwitchPage(); };
  cmdOKCancelHelp[kOK].on_click = [this] { Confirm(); };
  cmdOKCancelHelp[kCancel].on_click = [this] { Cancel(); };
  cmdOKCancelHelp[kHelp].on_click = [this] { ShowContextHelp(user_, help_context_, own_topic_); };
  SwitchPage();
}

void Form::FirstPaint() {
  if (std::exchange(painted_, true)) return;
  bool loaded = false;
  const Attempt loading = Try([&] {
    Use([&] {
      LoadSettings();
      loaded = true;
    });
    return true;
  });
  // Confirming what was loaded in part would overwrite what was not.
  if (!loaded) Close();
  // Even the error box may fail.
  if (loading.error) throw Failure(*loading.error);
}

void Form::Use(const std::function<void()>& action) {
  if (!is_open_ || is_in_use_) return;
  is_in_use_ = true;
  try {
    Trapped(action);
  } catch (...) {
    // Memory is out, even for the error box. The form stays usable.
    is_in_use_ = false;
    throw;
  }
  is_in_use_ = false;
}

void Form::Trapped(const std::function<void()>& action) {
  RunTrapped(user_, action_.c_str(), [&] {
    action();
    return true;
  });
}

std::int16_t Form::KeyPress(TextBox& box, std::int16_t key) {
  std::int16_t kept = 0;
  Trapped([&] {
    OnKeyPress(box, key);
    kept = box.filter() == KeyFilter::kDigits ? FilterDigit(user_, key) : FilterSignedDecimal(user_, key);
  });
  return kept;
}

void Form::GotFocus(Control& control) {
  focused_ = &control;
  entered_ = dynamic_cast<TextBox*>(&control);
  if (TextBox* box = entered_) Trapped([box] { box->SelectAll(); });
}

void Form::LostFocus(Control& control) {
  if (entered_ == &control) entered_ = nullptr;
  if (auto* box = dynamic_cast<TextBox*>(&control)) Trapped([box] { box->Leave(); });
}

void Form::Close() {
  if (is_open_) Cancel();
}

void Form::SwitchPage() {
  for (std::size_t index = 0; index < tabSettings.tabs().size(); ++index) {
    const auto frame = static_cast<std::size_t>(tabSettings.tabs()[index].tag);
    framSettings[frame].Show(index == tabSettings.selection());
  }
}

void Form::SelectPage(int page) {
  const auto& tabs = tabSettings.tabs();
  for (std::size_t index = 0; index < tabs.size(); ++index) {
    if (tabs[index].tag == page) tabSettings.Select(index);
  }
  SwitchPage();
}

bool Form::Refuse(const Control& control, const std::wstring& title, const std::wstring& message) {
  ShowMessage(user_, message, title);
  // A box whose page goes away, or that stands in a window at the back, is not told that it loses the focus.
  if (entered_ != nullptr && entered_ != &control) LostFocus(*entered_);
  SelectPage(control.page());
  Focus(control);
  return false;
}

void Form::Focus(const Control& control) {
  focused_ = &control;
  if (view() != nullptr) view()->OnFocus(control);
}

void Form::Cancel() {
  b_cancel_ = true;
  is_open_ = false;
}

void Form::Confirm() {
  if (Validate() && WriteSettings()) is_open_ = false;
}

}  // namespace kesp
