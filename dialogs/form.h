// A settings dialog without its window: its controls, its pages, and how it is loaded, confirmed and
// cancelled.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "dialogs/controls.h"
#include "dialogs/help.h"
#include "dialogs/text_box.h"
#include "support/user_surface.h"

namespace kesp {

// The base of every form. A form is made for one showing of its dialog and used by one thread. Its life:
// it is made with everything set up; the window shows it and calls FirstPaint, which loads the settings; the
// user works; OK or Cancel closes it. Its controls are public members with the names that the dialogs'
// descriptions use, so that a window finds them and a test reads them.
//
// The entry points for the window let no failure out: they show it in the error box. The form stays as it is
// then, unless it was being loaded.
class Form : public ControlOwner {
 public:
  // Index of each of the three buttons.
  enum : std::size_t { kOK = 0, kCancel = 1, kHelp = 2 };

  const std::wstring& caption() const { return caption_; }
  HelpTopic own_topic() const { return own_topic_; }
  std::int32_t help_context() const { return help_context_; }

  // Whether the dialog is still to be seen, and whether it ended by Cancel.
  bool is_open() const { return is_open_; }
  bool bCancel() const { return b_cancel_; }

  // The control that the form gave the focus to last, or the text box that got it since; null for none yet.
  const Control* focused() const { return focused_; }

  // For the window -----------------------------------------------------------------------------------------

  // The dialog has been painted: loads the settings when it is the first time. When that fails, the dialog
  // ends as if cancelled.
  void FirstPaint();

  // Something that the user does: clicks, choices. Runs it under the error trap. Does nothing when the form
  // has closed, or while an earlier action is still under way (some of them deliver messages meanwhile).
  void Use(const std::function<void()>& action);

  // A character that is typed into the box: its code, that of another character in its place, or 0 when it is
  // to be dropped.
  std::int16_t KeyPress(TextBox& box, std::int16_t key);

  // The focus goes to a control, or leaves it for another one of the dialog.
  void GotFocus(Control& control);
  void LostFocus(Control& control);

  // The title bar's close button. Unlike Cancel it counts also while an action is under way, which ends
  // first.
  void Close();

  std::array<Button, 3> cmdOKCancelHelp;
  TabStrip tabSettings;
  std::deque<Frame> framSettings;  // one for each page; the index is the page

 protected:
  // action names what is going on for the error box, for example "attempting to edit TCP/IP settings".
  // own_topic is the dialog's own help, help_context that in the client's help file.
  Form(UserSurface& user, std::wstring caption, std::wstring action, HelpTopic own_topic,
       std::int32_t help_context, std::vector<TabStrip::Tab> tabs);

  UserSurface& user() const { return user_; }

  // Fills the controls from what is edited.
  virtual void LoadSettings() = 0;

  // Checks what was entered and tells the user of the first mistake. Writes it back. True on success.
  virtual bool Validate() = 0;
  virtual bool WriteSettings() = 0;

  // What a character does beyond being filtered.
  virtual void OnKeyPress(TextBox& /*box*/, std::int16_t /*key*/) {}

  // Shows exactly the frame of the selected tab.
  void SwitchPage();

  // Tells the user what is wrong with a control's entry, selects its page and gives it the focus, for which
  // another text box is left. False, as the outcome of Validate.
  bool Refuse(const Control& control, const std::wstring& title, const std::wstring& message);

  // Gives the control the focus.
  void Focus(const Control& control);

  // Ends the dialog as the Cancel button does.
  void Cancel();

 private:
  void Trapped(const std::function<void()>& action);
  void Confirm();
  void SelectPage(int page);

  UserSurface& user_;
  const std::wstring caption_;
  const std::wstring action_;
  const HelpTopic own_topic_;
  const std::int32_t help_context_;
  bool painted_ = false;
  bool is_in_use_ = false;
  bool is_open_ = true;
  bool b_cancel_ = false;
  const Control* focused_ = nullptr;
  TextBox* entered_ = nullptr;  // that has the focus, as the window told
};

}  // namespace kesp
