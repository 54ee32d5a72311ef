// The user-surface seam: what the library shows to the person at the screen.
#pragma once

#include <cstdint>
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

inline constexpr std::uint32_t kStopIcon = 16;       // MB_ICONHAND
inline constexpr std::uint32_t kHelpButton = 16384;  // MB_HELP

enum class MousePointer { kDefault, kBusy };

class UserSurface {
 public:
  virtual ~UserSurface() = default;

  // Shows the box and waits for the answer; returns the number of the button as MessageBox does (1 is OK).
  virtual int ShowMessageBox(const MessageBoxRequest& request) = 0;

  // Changes the mouse pointer, until a window under it shows one of its own. Never fails.
  virtual void SetPointer(MousePointer pointer) noexcept = 0;
};

}  // namespace kesp
