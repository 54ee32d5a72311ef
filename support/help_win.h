// Windows' help viewer.
#pragma once

#include <cstdint>
#include <string>

namespace kesp {

// Gives the viewer a command (HELP_CONTEXT with a context number, for example) on a help file. False when the
// system has no help viewer call, or it refused. owner is the window (HWND) that asks; it may be null.
bool CallWinHelp(void* owner, const std::wstring& help_file, std::uint32_t command, std::uint32_t data);

}  // namespace kesp
