// Windows' help viewer, asked by its command.
#include "support/help_win.h"

#include <windows.h>

#include "support/text.h"

namespace kesp {

bool CallWinHelp(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data) {
  // Looked up at run time: the viewer left Windows long ago, and its call may follow.
  const auto win_help = reinterpret_cast<decltype(&WinHelpA)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "WinHelpA")));
  if (win_help == nullptr) return false;
  const std::string file = SystemCodePage().ToBytes(help_file);
  return win_help(static_cast<HWND>(owner), file.c_str(), command, data) != FALSE;
}

}  // namespace kesp
