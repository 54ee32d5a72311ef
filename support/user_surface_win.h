// Message boxes, the mouse pointer and the help viewer on the real screen.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "support/help_win.h"
#include "support/user_surface.h"

namespace kesp {

// How the help viewer is called: as CallHelpViewer is.
using HelpCaller = bool (*)(void* owner, const std::wstring& help_file, std::uint32_t command,
                            std::uint32_t data);

// The pointer that was last set on the calling thread: windows of this library show it where the mouse is
// over them, because the system asks each window anew when the mouse moves.
MousePointer PointerOfThread() noexcept;

// Has the mouse show it at once.
void ShowPointer(MousePointer pointer) noexcept;

class UserSurfaceWin final : public UserSurface {
 public:
  explicit UserSurfaceWin(HelpCaller call_help = CallHelpViewer) : call_help_(call_help) {}

  // The box belongs to the calling thread's active window, or to its foremost one while another program is in
  // front; in that case, and without one, all windows of the thread wait for it.
  // It runs a message loop. Returns 0 when Windows could not show it.
  int ShowMessageBox(const MessageBoxRequest& request) override;
  void SetPointer(MousePointer pointer) noexcept override;
  void SetHelpFile(const std::wstring& path) override;
  bool CallHelp(std::uint32_t command, std::uint32_t data) override;
  // The file is KespCommObj.chm in the folder of the library.
  std::optional<bool> CallOwnHelp(std::uint32_t topic) override;
  wchar_t DecimalSeparator() override;

 private:
  std::wstring HelpFile();

  HelpCaller call_help_;
  std::mutex help_file_mutex_;
  std::wstring help_file_;
};

}  // namespace kesp
