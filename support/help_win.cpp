// Windows' help viewers, looked up when they are asked for: the older one left Windows long ago.
#include "support/help_win.h"

#include <windows.h>

#include <array>
#include <string>

#include "support/help_file.h"
#include "support/owner_window_win.h"
#include "support/text.h"

namespace kesp {

namespace {

// HtmlHelpW and HH_HELP_CONTEXT of htmlhelp.h.
using HtmlHelpFunction = HWND(WINAPI*)(HWND owner, const wchar_t* file, UINT command, DWORD_PTR data);
constexpr UINT kHtmlHelpContext = 0x000F;

template <typename Function>
Function FindFunction(HMODULE library, const char* name) {
  return library == nullptr
             ? nullptr
             : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

bool CallWinHelp(HWND owner, const std::wstring& help_file, UINT command, std::uint32_t data) {
  const auto win_help = FindFunction<decltype(&WinHelpA)>(GetModuleHandleW(L"user32.dll"), "WinHelpA");
  if (win_help == nullptr) return false;
  const std::string file = SystemCodePage().ToBytes(help_file);
  return win_help(owner, file.c_str(), command, data) != FALSE;
}

// Of the system folder only, and never unloaded, because its windows go on running its code. The full path
// does without the search flags, which a Windows 7 may lack.
HMODULE LoadHtmlHelp() {
  std::array<wchar_t, MAX_PATH> folder{};
  const UINT length = GetSystemDirectoryW(folder.data(), MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return nullptr;
  const std::wstring path = std::wstring(folder.data(), length) + L"\\hhctrl.ocx";
  return LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}

bool CallHtmlHelp(HWND owner, const std::wstring& help_file, UINT command, std::uint32_t data) {
  if (command != HELP_CONTEXT) return false;
  const HMODULE viewer = LoadHtmlHelp();
  const auto html_help = FindFunction<HtmlHelpFunction>(viewer, "HtmlHelpW");
  if (html_help == nullptr) return false;
  // A window without an owner would stay behind in a client's program when the dialog has gone.
  HWND window = owner != nullptr ? owner : OwnerWindow();
  return html_help(window, help_file.c_str(), kHtmlHelpContext, data) != nullptr;
}

}  // namespace

bool CallHelpViewer(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data) {
  const auto call = FormatOfHelpFile(help_file) == HelpFormat::kHtmlHelp ? &CallHtmlHelp : &CallWinHelp;
  return call(static_cast<HWND>(owner), help_file, command, data);
}

}  // namespace kesp
