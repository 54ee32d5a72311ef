// Message boxes and the mouse pointer on the real screen.
#pragma once

#include "support/help_win.h"
#include "support/user_surface.h"

namespace kesp {

// How the Help button of a box opens its topic; the first argument is the box's owner window or null.
using HelpOpener = bool (*)(void* owner, const std::wstring& help_file, std::int32_t help_context);

class UserSurfaceWin final : public UserSurface {
 public:
  explicit UserSurfaceWin(HelpOpener open_help = ShowHelpContext) : open_help_(open_help) {}

  // The box belongs to the calling thread's active window; without one it is modal to the thread's windows.
  // It runs a message loop. Returns 0 when Windows could not show it.
  int ShowMessageBox(const MessageBoxRequest& request) override;
  void SetPointer(MousePointer pointer) noexcept override;

 private:
  HelpOpener open_help_;
};

}  // namespace kesp
