// The user-surface seam: what the library shows to the person at the screen.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kesp {

// A modal message box. style takes the published values of the Win32 MessageBox function.
struct MessageBoxRequest {
  std::wstring text;
  std::wstring title;
  std::uint32_t style = 0;
  std::wstring help_file;         // only with the Help button
  std::int32_t help_context = 0;  // only with the Help button
};

inline constexpr std::uint32_t kOkCancelButtons = 1;   // MB_OKCANCEL
inline constexpr std::uint32_t kYesNoButtons = 4;      // MB_YESNO
inline constexpr std::uint32_t kStopIcon = 16;         // MB_ICONHAND
inline constexpr std::uint32_t kInformationIcon = 64;  // MB_ICONINFORMATION
inline constexpr std::uint32_t kHelpButton = 16384;    // MB_HELP

// What ShowMessageBox answers.
inline constexpr int kOkAnswer = 1;      // IDOK
inline constexpr int kCancelAnswer = 2;  // IDCANCEL
inline constexpr int kYesAnswer = 6;     // IDYES

// A box with that icon and an OK button. With a help file it has a Help button, too, bound to file and
// context.
inline MessageBoxRequest BoxWithIcon(std::uint32_t icon, const std::wstring& text, const std::wstring& title,
                                     const std::wstring& help_file, std::int32_t help_context) {
  if (help_file.empty()) return {text, title, icon, {}, 0};
  return {text, title, icon | kHelpButton, help_file, help_context};
}

enum class MousePointer { kDefault, kBusy };

class UserSurface {
 public:
  virtual ~UserSurface() = default;

  // Shows the box and waits for the answer; returns the number of the button as MessageBox does (1 is OK).
  virtual int ShowMessageBox(const MessageBoxRequest& request) = 0;

  // Changes the mouse pointer, until a window under it shows one of its own. Never fails.
  virtual void SetPointer(MousePointer pointer) noexcept = 0;

  // The help file that CallHelp opens from now on, for every thread of the program; empty at first.
  virtual void SetHelpFile(const std::wstring& path) = 0;

  // Gives the help viewer a command on that file, as the Win32 function WinHelp does without an owner window.
  // False when there is no viewer, or it refused.
  virtual bool CallHelp(std::uint32_t command, std::uint32_t data) = 0;

  // Opens that topic of the library's own help; false when the viewer refused. Opens nothing and returns
  // nothing when a help file has been set, or the library has none of its own here.
  virtual std::optional<bool> CallOwnHelp(std::uint32_t topic) = 0;

  // The first character that separates whole numbers from fractions in the user's locale.
  virtual wchar_t DecimalSeparator() = 0;
};

}  // namespace kesp
