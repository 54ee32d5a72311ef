// Windows' help viewers.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// Gives the viewer of a help file a command of the Win32 function WinHelp. A file that ends in .chm is opened
// by HTML Help, which takes HELP_CONTEXT with a context number only; every other file by WinHelp. False when
// the viewer is not there, or refused.
//
// owner is the window (HWND) that asks. A window of HTML Help closes with its owner; for null that is the
// thread's foremost window. WinHelp has none then.
bool CallHelpViewer(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data);

}  // namespace kesp
